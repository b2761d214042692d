#include "core/HistoryPage.h"

#include "support/ScopedStores.h"

#include "CoreTestSupport.h"

#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;

TEST(HistoryPage, DatesAreLocalMediumDatesWithShortTimes)
{
    struct Case {
        const char* zone;
        const char* iso;
        const char* text;
    };
    for (const Case& c : std::vector<Case> {
             { "UTC0", "2026-11-20T08:00:00Z", "Nov 20, 2026, 08:00" },
             { "UTC0", "2026-03-05T17:45:59Z", "Mar 5, 2026, 17:45" },
             { "UTC-2", "2026-12-31T23:30:00Z", "Jan 1, 2027, 01:30" },
             { "UTC+5", "2026-01-01T03:00:00Z", "Dec 31, 2025, 22:00" },
         }) {
        SCOPED_TRACE(std::string(c.zone) + " " + c.iso);
        ScopedTimeZone zone(c.zone);
        EXPECT_EQ(HistoryPage::formatDate(at(c.iso)), c.text);
    }
}

TEST(HistoryPage, RowsEscapeEverythingAndLinkOnlyWebAddresses)
{
    ScopedTimeZone zone("UTC0");
    struct Case {
        HistoryEntry entry;
        std::vector<std::string> has;
        std::vector<std::string> hasNot;
    };
    for (const Case& c : std::vector<Case> {
             { { "https://a.example/?a=1&b=2", "<script>alert(1)</script>", at("2026-11-20T08:00:00Z"), 3 },
                 { "<a href=\"https://a.example/?a=1&amp;b=2\">&lt;script&gt;alert(1)&lt;/script&gt;</a>",
                     "<span class=\"url\">https://a.example/?a=1&amp;b=2</span>",
                     "<td class=\"when\">Nov 20, 2026, 08:00</td>", "<td class=\"num\">3</td>" },
                 { "<script>" } },
             { { "https://b.example/", "", at("2026-11-20T08:00:00Z"), 1 },
                 { "<a href=\"https://b.example/\">https://b.example/</a>" }, {} },
             { { "javascript:alert('x')", "<b>Bold</b> & co", at("2026-11-20T08:00:00Z"), 12 },
                 { "<span class=\"title\">&lt;b&gt;Bold&lt;/b&gt; &amp; co</span>",
                     "<span class=\"url\">javascript:alert(&#39;x&#39;)</span>" },
                 { "href", "<b>" } },
         }) {
        SCOPED_TRACE(c.entry.url);
        expectParts(HistoryPage::row(c.entry), c.has, c.hasNot);
    }
}

TEST(HistoryPage, Render)
{
    ScopedTimeZone zone("UTC0");
    ScopedStores stores;
    std::string page = HistoryPage::render();
    expectParts(page, { "<title>History</title>", "<span>History</span>" });
    EXPECT_EQ(bodyOf(page), "<p class=\"empty\">Nothing here yet.</p>");

    stores.history().record("https://a.example/", "A", at("2026-11-20T08:00:00Z"));
    stores.history().record("https://b.example/", "<script>B</script>", at("2026-11-20T09:00:00Z"));
    // The rows in the store's order, newest first.
    auto entries = stores.history().entries();
    expectParts(bodyOf(HistoryPage::render()),
        { "name=\"clear\"", HistoryPage::row(entries[0]) + HistoryPage::row(entries[1]) }, { "<script>" });
}
