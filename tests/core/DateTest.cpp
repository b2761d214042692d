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
