#include "core/RateLimit.h"

#include <gtest/gtest.h>

namespace velder::test {

using namespace std::chrono_literals;

// One event per key in each gap: a key's first goes out, another key isn't held back by it, and a
// forgotten key starts afresh.
TEST(RateLimitTest, OnePerKeyInEachGap)
{
    RateLimit rate(100ms);
    RateLimit::TimePoint start;
    EXPECT_TRUE(rate.admit(1, start));
    EXPECT_FALSE(rate.admit(1, start + 99ms));
    EXPECT_TRUE(rate.admit(2, start + 99ms));
    EXPECT_TRUE(rate.admit(1, start + 100ms));
    EXPECT_FALSE(rate.admit(1, start + 150ms)) << "the gap runs from the last event that went out";
    rate.forget(1);
    EXPECT_TRUE(rate.admit(1, start + 150ms));

    int sent = 0;
    for (int ms = 0; ms < 1000; ms += 7) {
        sent += rate.admit(3, start + std::chrono::milliseconds(ms));
    }
    EXPECT_EQ(sent, 10) << "a second of reports every 7 ms";
}

} // namespace velder::test
