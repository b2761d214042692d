#include "core/InternalPages.h"

#include "support/FakePageHost.h"
#include "support/ScopedStores.h"

#include "CoreTestSupport.h"

#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;

namespace {

class InternalPagesTest : public testing::Test {
protected:
    void SetUp() override
    {
        stores.history().record("https://a.example/x", "A", velder::now());
        stores.history().record("https://b.example/", "B", velder::now());
    }

    std::optional<InternalPageResponse> get(const std::string& url, std::optional<std::uint64_t> view = 5)
    {
        return InternalPages::shared().response(url, view);
    }

    std::vector<std::string> pinnedSites()
    {
        std::vector<std::string> sites;
        for (const auto& pin : stores.vault().snapshot()->dashboardPins) {
            sites.push_back(pin.site);
        }
        return sites;
    }

    ScopedStores stores;
    ScopedPageHost host;
};

} // namespace

TEST_F(InternalPagesTest, DashboardActionsRedirect)
{
    struct Case {
        const char* url;
        std::vector<std::string> pins;
        std::vector<std::string> ignored;
    };
    // Each row starts from the pins and ignored sites the previous rows left.
    for (const Case& c : std::vector<Case> {
             { "velder://dashboard/?pin=%20A.Example%20", { "a.example" }, {} },
             { "velder://dashboard/?pin=b.example&unpin=a.example", { "a.example", "b.example" }, {} },
             { "velder://dashboard/?unpin=a.example", { "b.example" }, {} },
             { "velder://dashboard/?pin=", { "b.example" }, {} },
             { "velder://dashboard/?ignore=b.example&restore=1", {}, { "b.example" } },
             { "velder://dashboard/?ignore=zzz.example", {}, { "b.example", "zzz.example" } },
             { "velder://dashboard/?restore", {}, {} },
         }) {
        SCOPED_TRACE(c.url);
        auto response = get(c.url);
        ASSERT_TRUE(response);
        EXPECT_EQ(response->redirectURL, "velder://dashboard/");
        EXPECT_EQ(response->statusCode, 302);
        EXPECT_EQ(pinnedSites(), c.pins);
        EXPECT_EQ(stores.vault().snapshot()->dashboardIgnored, c.ignored);
    }
    EXPECT_TRUE(host.host->calls.empty()) << "dashboard actions don't refresh other pages";
    auto page = get("VELDER://Dashboard/?unknown=1");
    ASSERT_TRUE(page);
    EXPECT_EQ(page->redirectURL, "");
    EXPECT_NE(page->body.find("<h1>Dashboard</h1>"), std::string::npos);
}

// Each action redirects to the page with its notice; without a redirect the page itself shows one.
TEST_F(InternalPagesTest, SettingsActionsAndTheirNotices)
{
    struct Case {
        const char* url;
        const char* redirect; // empty: a page
        std::vector<std::string> calls;
        const char* notice; // empty: none
    };
    for (const Case& c : std::vector<Case> {
             { "velder://settings/?clear=browsingdata", "velder://settings/?done=browsingdata",
                 { "clearCookiesAndCache 5", "refresh 5" }, "Cookies and cache cleared." },
             { "velder://settings/?clear=location&save=1", "velder://settings/?done=location",
                 { "forgetLocationAnswers", "refresh 5" }, "Location answers forgotten." },
             { "velder://settings/?clear=bogus&save=1&MaxHistory=77", "velder://settings/?saved=1", { "refresh 5" },
                 "Saved." },
             { "velder://settings/?clear=bogus", "", {}, "" },
             { "velder://settings/?Save=1", "", {}, "" },
             { "velder://settings/?saved&done=history", "", {}, "Saved." },
             { "velder://settings/?done=History", "", {}, "" },
         }) {
        SCOPED_TRACE(c.url);
        host.host->calls.clear();
        auto response = get(c.url);
        ASSERT_TRUE(response);
        EXPECT_EQ(response->redirectURL, c.redirect);
        EXPECT_EQ(host.host->calls, c.calls);
        auto page = *c.redirect ? get(c.redirect) : response;
        std::string notice = *c.notice ? std::string("<span class=\"saved\">") + c.notice + "</span>" : "&nbsp;";
        EXPECT_NE(page->body.find("<div class=\"actions\">" + notice + "</div>"), std::string::npos);
    }
    EXPECT_EQ(stores.vault().snapshot()->settings.maxHistory, 77);

    // Without a view that asked, there is no session whose cookies could be cleared.
    host.host->calls.clear();
    EXPECT_EQ(get("velder://settings/?clear=browsingdata", std::nullopt)->redirectURL,
        "velder://settings/?done=browsingdata");
    EXPECT_EQ(get("velder://settings/?clear=history", std::nullopt)->redirectURL, "velder://settings/?done=history");
    EXPECT_EQ(stores.history().count(), 0u);
    EXPECT_EQ(host.host->calls, (std::vector<std::string> { "refresh -", "refresh -" }));
    EXPECT_NE(get("velder://settings/?done=history")->body.find(">History cleared.<"), std::string::npos);

    EXPECT_NE(get("velder://settings/?confirmarchive=0")->body.find("<div class=\"warn\">"), std::string::npos);
    EXPECT_EQ(get("velder://settings/")->body.find("<div class=\"warn\">"), std::string::npos);
}

TEST_F(InternalPagesTest, HistoryAboutAndUnknownRoutes)
{
    auto page = get("velder://history/");
    ASSERT_TRUE(page);
    EXPECT_NE(page->body.find("https://a.example/x"), std::string::npos);
    auto cleared = get("velder://history/?clear=0", 9);
    EXPECT_EQ(cleared->redirectURL, "velder://history/");
    EXPECT_EQ(stores.history().count(), 0u);
    EXPECT_EQ(host.host->calls, std::vector<std::string> { "refresh 9" });

    EXPECT_NE(get("velder://about/?clear=1&save=1")->body.find("<h1>About Velder</h1>"), std::string::npos)
        << "the about page is shown whatever its query";

    EXPECT_FALSE(get("velder://downloads/")) << "what the route doesn't know isn't answered";
    EXPECT_FALSE(get("https://a.example/"));
}

TEST_F(InternalPagesTest, WithoutAHostActionsStillWork)
{
    InternalPages::shared().setHost({});
    auto response = get("velder://history/?clear=1");
    EXPECT_EQ(response->redirectURL, "velder://history/");
    EXPECT_EQ(stores.history().count(), 0u);
    EXPECT_EQ(get("velder://settings/?clear=location")->redirectURL, "velder://settings/?done=location");
    EXPECT_NE(get("velder://about/")->body.find("<dt>WebKitGTK</dt><dd>unknown</dd>"), std::string::npos);
    EXPECT_TRUE(host.host->calls.empty());
}
