#include "core/DashboardPage.h"

#include "support/ScopedStores.h"

#include "CoreTestSupport.h"

#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;
using namespace std::chrono_literals;

namespace {
const Date noon = at("2026-11-20T12:00:00Z");
} // namespace

TEST(DashboardPage, Ago)
{
    ScopedTimeZone zone("UTC-2"); // two hours east of UTC
    struct Case {
        std::chrono::seconds before;
        const char* text;
    };
    for (const Case& c : std::vector<Case> {
             { 0s, "just now" },
             { 59s, "just now" },
             { 60s, "1 min ago" },
             { 3599s, "59 min ago" },
             { 3600s, "1 hr ago" },
             { 86399s, "23 hr ago" },
             { 86400s, "1 d ago" },
             { 604799s, "6 d ago" },
             { 604800s, "2026-11-13" },
             // 2026-11-12T23:00Z is already the 13th two hours east.
             { 604800s + 13h, "2026-11-13" },
             { 604800s + 14h + 1s, "2026-11-12" },
         }) {
        SCOPED_TRACE(c.before.count());
        EXPECT_EQ(DashboardPage::ago(noon - c.before, noon), c.text);
    }
}

TEST(DashboardPage, TilesEscapeWhatTheyShowAndLinkOnlyWebAddresses)
{
    ScopedStores stores;
    ASSERT_TRUE(stores.favicons().store(pngSignature, "a.example"));
    struct Case {
        TopSite site;
        std::vector<std::string> has;
        std::vector<std::string> hasNot;
    };
    for (const Case& c :
        std::vector<Case> {
            { { "a.example", "https://a.example/?q=<x>&y", "A \"quoted\" <title>", 1, noon - 5min, true },
                { "class=\"tile pinned\"",
                    "<img class=\"mark icon\" alt=\"\" src=\"data:image/png;base64,iVBORw0KGgo=\">",
                    "href=\"velder://dashboard/?unpin=a%2Eexample\"", "href=\"velder://dashboard/?ignore=a%2Eexample\"",
                    "<a class=\"face\" href=\"https://a.example/?q=&lt;x&gt;&amp;y\"",
                    "<span class=\"sub\">A &quot;quoted&quot; &lt;title&gt;</span>",
                    "<span class=\"meta\">1 visit \xC2\xB7 5 min ago</span>" },
                { "<title>", "<x>", "?pin=" } },
            { { "b-b.example", "javascript:alert(1)", std::nullopt, 0, distantPast(), true },
                { "<span class=\"mark\">B</span>", "<span class=\"face\" title=\"javascript:alert(1)\">",
                    "<span class=\"sub\">b-b.example</span>", "?unpin=b%2Db%2Eexample\"",
                    "<span class=\"meta\">Pinned</span>" },
                { "href=\"javascript", "<img" } },
            { { "\xC3\xBC.example", "http://xn--tda.example/", "", 12, noon - 3h, false },
                { "<div class=\"tile\">", "<span class=\"mark\">\xC3\x9C</span>", "?pin=%C3%BC%2Eexample\"",
                    "<span class=\"sub\">\xC3\xBC.example</span>", "12 visits \xC2\xB7 3 hr ago" },
                { "?unpin=" } },
        }) {
        SCOPED_TRACE(c.site.site);
        expectParts(DashboardPage::tile(c.site, noon), c.has, c.hasNot);
    }
}

TEST(DashboardPage, RenderShowsTilesButNotTheIgnoredSites)
{
    ScopedStores stores;
    expectParts(DashboardPage::render(), { "<h1>Dashboard</h1>", "<p class=\"empty\">Nothing to show yet." },
        { "class=\"tiles\"", "ignored" });

    stores.history().record("https://a.example/", "<script>alert(1)</script>", velder::now());
    stores.history().record("https://b.example/", "", velder::now());
    stores.vault().update([](VaultData& data) { data.dashboardIgnored = { "b.example" }; });
    std::string body = bodyOf(DashboardPage::render());
    expectParts(body,
        { "<div class=\"tiles\"><div class=\"tile\">", "&lt;script&gt;alert(1)&lt;/script&gt;", "1 site is ignored.",
            "href=\"velder://dashboard/?restore=1\"" },
        { "<script>", "b.example", "class=\"empty\"" });

    stores.vault().update([](VaultData& data) { data.dashboardIgnored = { "b.example", "c.example" }; });
    EXPECT_NE(DashboardPage::render().find("2 sites are ignored."), std::string::npos);
}
