#include "core/QuitDrain.h"

#include <gtest/gtest.h>

namespace velder::test {

using namespace std::chrono_literals;
using QuitDrain::Step;

// Work waiting is done until two seconds have gone; with none, the drain waits out half a second and no more.
TEST(QuitDrainTest, AtLeastHalfASecondAtMostTwo)
{
    struct Row {
        std::chrono::milliseconds elapsed;
        bool workWaiting;
        Step expected;
    };
    const Row rows[] = {
        { 0ms, false, Step::wait },
        { 499ms, false, Step::wait },
        { 500ms, false, Step::stop },
        { 0ms, true, Step::dispatch },
        { 1999ms, true, Step::dispatch },
        { 2000ms, true, Step::stop },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.elapsed.count()) + " ms, work waiting " + std::to_string(row.workWaiting));
        EXPECT_EQ(QuitDrain::next(row.elapsed, row.workWaiting), row.expected);
    }
}

} // namespace velder::test
