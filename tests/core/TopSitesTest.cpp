#include "core/TopSites.h"

#include "support/ScopedStores.h"

#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;
using namespace std::chrono_literals;

namespace {

Date daysAgo(double days)
{
    return velder::now()
        - std::chrono::duration_cast<std::chrono::seconds>(std::chrono::duration<double>(days * 86400));
}

void visit(HistoryStore& history, const std::string& url, int times, Date when, const std::string& title = "")
{
    for (int i = 0; i < times; ++i) {
        history.record(url, title, when);
    }
}

std::vector<std::string> sitesOf(const std::vector<TopSite>& sites)
{
    std::vector<std::string> result;
    for (const auto& site : sites) {
        result.push_back(site.site + (site.pinned ? "*" : ""));
    }
    return result;
}

} // namespace

TEST(TopSites, HistoryIsGroupedBySite)
{
    ScopedStores stores;
    auto& history = stores.history();
    // Recorded oldest first, so the store lists www, x, y: y ties with x but is met later, and x stays.
    Date newestOfA = daysAgo(0.5);
    visit(history, "http://a.example:8080/y", 5, daysAgo(0.7), "A y");
    visit(history, "https://a.example/x", 5, daysAgo(0.6), "A x");
    visit(history, "https://www.a.example/", 3, newestOfA, "A home");
    visit(history, "https://b.a.example/", 1, daysAgo(0.1));
    visit(history, "file:///home/me/a.html", 9, daysAgo(0.1));
    visit(history, "ftp://files.example/", 9, daysAgo(0.1));
    visit(history, "https://www./", 9, daysAgo(0.1));
    visit(history, "HTTPS://WWW.C.EXAMPLE/", 1, daysAgo(3));

    auto sites = TopSites::fromHistory();
    ASSERT_EQ(sitesOf(sites), (std::vector<std::string> { "a.example", "b.a.example", "c.example" }));
    EXPECT_EQ(sites[0].visits, 13);
    EXPECT_EQ(sites[0].url, "https://a.example/x") << "a tile opens its site's most visited page";
    EXPECT_EQ(sites[0].title, "A x");
    EXPECT_EQ(sites[0].lastVisitUtc, newestOfA);
    EXPECT_EQ(sites[2].url, "HTTPS://WWW.C.EXAMPLE/");
}

TEST(TopSites, FrecencyWeighsVisitsByAge)
{
    struct Case {
        double days;
        double factor;
    };
    for (const Case& c : std::vector<Case> { { 0, 4 }, { 0.99, 4 }, { 1.01, 2 }, { 6.99, 2 }, { 7.01, 1 }, { 29.99, 1 },
             { 30.01, 0.5 }, { 400, 0.5 } }) {
        SCOPED_TRACE(c.days);
        Date now = velder::now();
        TopSite site { "a.example", "", {}, 10, now - std::chrono::seconds(static_cast<long>(c.days * 86400)), false };
        EXPECT_EQ(TopSites::score(site, now), 10 * c.factor);
    }

    ScopedStores stores;
    visit(stores.history(), "https://old.example/", 10, daysAgo(40)); // scores 5
    visit(stores.history(), "https://new.example/", 2, daysAgo(0)); // scores 8
    visit(stores.history(), "https://tie-old.example/", 4, daysAgo(2)); // scores 8, visited earlier
    EXPECT_EQ(sitesOf(TopSites::fromHistory()),
        (std::vector<std::string> { "new.example", "tie-old.example", "old.example" }));
}

TEST(TopSites, PinsComeFirstAndHistoryFillsUpToTwelve)
{
    struct Case {
        int pins;
        size_t tiles;
    };
    for (const Case& c : std::vector<Case> { { 0, 12 }, { 5, 12 }, { 11, 12 }, { 12, 12 }, { 13, 13 } }) {
        SCOPED_TRACE(c.pins);
        ScopedStores stores;
        for (int i = 0; i < 20; ++i) {
            visit(stores.history(), numbered("https://h", i) + ".example/", 20 - i, daysAgo(0));
        }
        stores.vault().update([&](VaultData& data) {
            for (int i = 0; i < c.pins; ++i) {
                data.dashboardPins.push_back({ numbered("p", i) + ".example", "https://p/", std::nullopt });
            }
        });
        auto tiles = TopSites::current();
        EXPECT_EQ(tiles.size(), c.tiles);
        if (c.pins > 0 && c.pins < 12) {
            EXPECT_TRUE(tiles[static_cast<size_t>(c.pins) - 1].pinned);
            EXPECT_EQ(tiles[static_cast<size_t>(c.pins)].site, "h0.example");
        }
    }
}

TEST(TopSites, PinsAndIgnoredSitesShapeTheTiles)
{
    ScopedStores stores;
    const Date aVisited = daysAgo(1.5);
    visit(stores.history(), "https://a.example/page", 3, aVisited, "A page");
    visit(stores.history(), "https://b.example/", 2, daysAgo(0));
    visit(stores.history(), "https://c.example/", 1, daysAgo(0));
    stores.vault().update([](VaultData& data) {
        data.dashboardPins = {
            { "gone.example", "https://gone.example/kept", "Kept title" }, // its history was cleared
            { "a.example", "", std::nullopt }, // takes url and title from the history
            { "", "https://x/", std::nullopt }, // no site: skipped
            { "gone.example", "https://dupe/", std::nullopt }, // seen already: skipped
            { "b.example", "https://b.example/pinned", "" },
        };
        data.dashboardIgnored = { "b.example", "c.example" };
    });
    auto tiles = TopSites::current();
    ASSERT_EQ(sitesOf(tiles), (std::vector<std::string> { "gone.example*", "a.example*", "b.example*" }))
        << "an ignored site still shows when pinned; unpinned, it is left out";
    EXPECT_EQ(
        tiles[0], (TopSite { "gone.example", "https://gone.example/kept", "Kept title", 0, distantPast(), true }));
    EXPECT_EQ(tiles[1], (TopSite { "a.example", "https://a.example/page", "A page", 3, aVisited, true }));
    EXPECT_EQ(tiles[2].url, "https://b.example/pinned");
    EXPECT_EQ(tiles[2].title, "") << "an empty pin title falls back to the history's, which is empty";
}

TEST(TopSites, PinUnpinIgnoreRestore)
{
    ScopedStores stores;
    visit(stores.history(), "https://a.example/x", 2, daysAgo(0), "A");
    visit(stores.history(), "https://b.example/", 1, daysAgo(0), "B");
    auto pins = [&] {
        std::vector<std::string> result;
        for (const auto& pin : stores.vault().snapshot()->dashboardPins) {
            result.push_back(pin.site + " " + pin.url + " " + pin.title.value_or("-"));
        }
        return result;
    };
    auto ignored = [&] { return stores.vault().snapshot()->dashboardIgnored; };

    TopSites::pin(" A.Example ");
    TopSites::pin("nohistory.example");
    TopSites::pin(std::nullopt);
    TopSites::pin("");
    EXPECT_EQ(pins(), std::vector<std::string> { "a.example https://a.example/x A" });

    TopSites::ignore("a.example");
    EXPECT_TRUE(pins().empty()) << "ignoring a pinned site removes the pin";
    TopSites::ignore("b.example");
    TopSites::ignore("a.example");
    EXPECT_EQ(ignored(), (std::vector<std::string> { "a.example", "b.example" })) << "a repeat keeps its place";

    TopSites::pin("b.example");
    EXPECT_EQ(ignored(), std::vector<std::string> { "a.example" }) << "pinning takes a site off the ignored list";
    visit(stores.history(), "https://b.example/more", 5, daysAgo(0), "More B");
    TopSites::pin("b.example");
    EXPECT_EQ(pins(), std::vector<std::string> { "b.example https://b.example/more More B" }) << "updated in place";

    TopSites::unpin("B.EXAMPLE");
    EXPECT_TRUE(pins().empty());
    TopSites::restoreIgnored();
    EXPECT_TRUE(ignored().empty());
}

TEST(TopSites, Limits)
{
    ScopedStores stores;
    for (int i = 0; i < 26; ++i) {
        visit(stores.history(), numbered("https://s", i) + ".example/", 1, daysAgo(0));
    }
    stores.vault().update([](VaultData& data) { data.dashboardIgnored = { "s25.example" }; });
    for (int i = 0; i < 26; ++i) {
        TopSites::pin(numbered("s", i) + ".example");
    }
    auto snapshot = stores.vault().snapshot();
    EXPECT_EQ(snapshot->dashboardPins.size(), 24u) << "the 25th pin is refused";
    EXPECT_TRUE(snapshot->dashboardIgnored.empty()) << "a refused pin still leaves the ignored list";

    for (int i = 0; i < 201; ++i) {
        TopSites::ignore(numbered("i", i) + ".example");
    }
    snapshot = stores.vault().snapshot();
    ASSERT_EQ(snapshot->dashboardIgnored.size(), 200u);
    EXPECT_EQ(snapshot->dashboardIgnored.front(), "i1.example") << "the 201st drops the oldest";
    EXPECT_EQ(snapshot->dashboardIgnored.back(), "i200.example");

    std::string longest(253, 'a');
    EXPECT_EQ(TopSites::normalise(longest), longest);
    EXPECT_EQ(TopSites::normalise(longest + "a"), std::nullopt);
    EXPECT_EQ(TopSites::normalise(" \n "), std::nullopt);
    EXPECT_EQ(TopSites::normalise("\tB\xC3\x9C.Example\n"), "b\xC3\xBC.example");
}
