#include "core/DashboardPage.h"

#include "support/ScopedStores.h"

#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;
using namespace std::chrono_literals;

namespace {

Date noon()
{
    return *parseIso8601("2026-11-20T12:00:00Z");
}

std::string bodyOf(const std::string& page)
{
    size_t start = page.find("</header>") + 9;
    return page.substr(start, page.rfind("</div></body>") - start);
}

} // namespace

TEST(DashboardPage, Ago)
{
    ScopedEnv zone("TZ", "UTC-2"); // two hours east of UTC
    tzset();
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
        EXPECT_EQ(DashboardPage::ago(noon() - c.before, noon()), c.text);
    }
    unsetenv("TZ");
    tzset();
}

TEST(DashboardPage, Tiles)
{
    ScopedStores stores;
    const std::vector<std::uint8_t> png { 0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A };
    ASSERT_TRUE(stores.favicons().store(png, "a.example"));
    struct Case {
        TopSite site;
        const char* html;
    };
    for (const Case& c :
        std::vector<Case> {
            { { "a.example", "https://a.example/?q=<x>&y", "A \"quoted\" <title>", 1, noon() - 5min, true },
                "<div class=\"tile pinned\"><div class=\"head\"><img class=\"mark icon\" alt=\"\" "
                "src=\"data:image/png;base64,iVBORw0KGgo=\"><div class=\"acts\"><a class=\"act\" "
                "href=\"velder://dashboard/?unpin=a%2Eexample\" title=\"Let this tile move with the rest "
                "again\">Unpin</a><a class=\"act\" href=\"velder://dashboard/?ignore=a%2Eexample\" title=\"Never "
                "suggest this site here. History keeps it\">Ignore</a></div></div><a class=\"face\" "
                "href=\"https://a.example/?q=&lt;x&gt;&amp;y\" title=\"https://a.example/?q=&lt;x&gt;&amp;y\"><span "
                "class=\"name\">a.example</span><span class=\"sub\">A &quot;quoted&quot; &lt;title&gt;</span></a><span "
                "class=\"meta\">1 visit \xC2\xB7 5 min ago</span></div>" },
            { { "b-b.example", "javascript:alert(1)", std::nullopt, 0, distantPast(), true },
                "<div class=\"tile pinned\"><div class=\"head\"><span class=\"mark\">B</span><div "
                "class=\"acts\"><a class=\"act\" href=\"velder://dashboard/?unpin=b%2Db%2Eexample\" title=\"Let this "
                "tile move with the rest again\">Unpin</a><a class=\"act\" "
                "href=\"velder://dashboard/?ignore=b%2Db%2Eexample\" title=\"Never suggest this site here. History "
                "keeps it\">Ignore</a></div></div><span class=\"face\" title=\"javascript:alert(1)\"><span "
                "class=\"name\">b-b.example</span><span class=\"sub\">b-b.example</span></span><span "
                "class=\"meta\">Pinned</span></div>" },
            { { "\xC3\xBC.example", "http://xn--tda.example/", "", 12, noon() - 3h, false },
                "<div class=\"tile\"><div class=\"head\"><span class=\"mark\">\xC3\x9C</span><div "
                "class=\"acts\"><a class=\"act\" href=\"velder://dashboard/?pin=%C3%BC%2Eexample\" title=\"Keep this "
                "tile where it is, whatever history does\">Pin</a><a class=\"act\" "
                "href=\"velder://dashboard/?ignore=%C3%BC%2Eexample\" title=\"Never suggest this site here. History "
                "keeps it\">Ignore</a></div></div><a class=\"face\" href=\"http://xn--tda.example/\" "
                "title=\"http://xn--tda.example/\"><span class=\"name\">\xC3\xBC.example</span><span "
                "class=\"sub\">\xC3\xBC.example</span></a><span class=\"meta\">12 visits \xC2\xB7 3 hr "
                "ago</span></div>" },
        }) {
        SCOPED_TRACE(c.site.site);
        EXPECT_EQ(DashboardPage::tile(c.site, noon()), c.html);
    }
}

TEST(DashboardPage, RenderWithAndWithoutTiles)
{
    ScopedStores stores;
    std::string empty = bodyOf(DashboardPage::render());
    EXPECT_EQ(empty,
        "<p class=\"empty\">Nothing to show yet. Sites you visit become tiles here, newest and most-used first "
        "\xE2\x80\x94 pin the ones worth keeping, ignore the ones that are not.</p>");

    stores.history().record("https://a.example/", "<script>alert(1)</script>", velder::now());
    stores.history().record("https://b.example/", "", velder::now());
    stores.vault().update([](VaultData& data) { data.dashboardIgnored = { "b.example" }; });
    std::string page = DashboardPage::render();
    EXPECT_NE(page.find("<title>Dashboard</title>"), std::string::npos);
    EXPECT_NE(page.find("<h1>Dashboard</h1>"), std::string::npos);
    EXPECT_NE(page.find("<span>Dashboard</span>"), std::string::npos);
    std::string body = bodyOf(page);
    EXPECT_TRUE(body.starts_with("<div class=\"tiles\"><div class=\"tile\">")) << body;
    EXPECT_EQ(body.find("<script>"), std::string::npos);
    EXPECT_NE(body.find("&lt;script&gt;alert(1)&lt;/script&gt;"), std::string::npos);
    EXPECT_EQ(body.find("b.example"), std::string::npos);
    EXPECT_TRUE(body.ends_with("</div></div><div class=\"actions\"><span class=\"note\">1 site is ignored.</span><a "
                               "class=\"act\" href=\"velder://dashboard/?restore=1\" title=\"Let every ignored site be "
                               "suggested again\">Show them again</a></div>"))
        << body;

    stores.vault().update([](VaultData& data) { data.dashboardIgnored = { "b.example", "c.example" }; });
    EXPECT_NE(DashboardPage::render().find("2 sites are ignored."), std::string::npos);
}
