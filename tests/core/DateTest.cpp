#include "core/Date.h"

#include <gtest/gtest.h>

using namespace velder;

TEST(Date, FarDatesAreHeldInsideTheClocksRange)
{
    struct Case {
        const char* text;
        const char* stored;
    };
    for (const Case& c : std::vector<Case> {
             { "0001-01-01T00:00:00Z", "1678-01-01T00:00:00Z" },
             { "1677-12-31T23:59:59Z", "1678-01-01T00:00:00Z" },
             { "1678-01-01T00:00:00Z", "1678-01-01T00:00:00Z" },
             { "2026-11-20T08:00:00+01:00", "2026-11-20T07:00:00Z" },
             { "2262-01-01T00:00:00Z", "2262-01-01T00:00:00Z" },
             { "4001-01-01T00:00:00Z", "2262-01-01T00:00:00Z" },
         }) {
        SCOPED_TRACE(c.text);
        auto date = parseIso8601(c.text);
        ASSERT_TRUE(date);
        EXPECT_EQ(formatIso8601(*date), c.stored);
    }
    EXPECT_EQ(formatIso8601(distantPast()), "1678-01-01T00:00:00Z");
}

TEST(Date, SecondsBetweenFarApartDates)
{
    Date late = *parseIso8601("2261-01-01T00:00:00Z");
    // 583 years of 365.2425 days, give or take the calendar: far beyond the clock's 292-year difference.
    double seconds = secondsBetween(distantPast(), late);
    EXPECT_NEAR(seconds, 583 * 365.2425 * 86400, 2 * 86400);
    EXPECT_NEAR(secondsBetween(late, distantPast()), -seconds, 1e-3);
    EXPECT_EQ(secondsBetween(late, late + std::chrono::milliseconds(1500)), 1.5);
}

TEST(Date, Iso8601InWholeSecondsUtc)
{
    auto date = parseIso8601("2026-11-20T08:00:00Z");
    ASSERT_TRUE(date);
    EXPECT_EQ(formatIso8601(*date + std::chrono::milliseconds(999)), "2026-11-20T08:00:00Z");
    EXPECT_EQ(parseIso8601("2026-11-20T09:30:00+01:30"), date);
    EXPECT_EQ(formatIso8601(*parseIso8601("1999-12-31T23:59:59-00:30")), "2000-01-01T00:29:59Z");
    for (const char* bad : { "", "2026-11-20", "2026-11-20T08:00:00", "2026-13-01T00:00:00Z", "2026-02-30T00:00:00Z",
             "2026-11-20T24:00:00Z", "2026-11-20T08:00:00.5Z", "2026-11-20 08:00:00Z", "2026-11-20T08:00:00+0100" }) {
        SCOPED_TRACE(bad);
        EXPECT_FALSE(parseIso8601(bad));
    }
}
