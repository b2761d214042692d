#include "bridge/VLDFindCounter.h"

#include <glib.h>
#include <gtest/gtest.h>

namespace velder::test {

TEST(FindCounterTest, CountsTheActiveMatchRoundThePage)
{
    struct Step {
        enum { search, step, reset } kind;
        unsigned matchCount;
        bool forward;
        std::int32_t count;
        std::int32_t active;
    };
    struct Row {
        const char* name;
        std::vector<Step> steps;
    };
    const Row rows[] = {
        { "forward from the first, wrapping to it",
            { { Step::search, 3, true, 3, 1 }, { Step::step, 1, true, 3, 2 }, { Step::step, 1, true, 3, 3 },
                { Step::step, 1, true, 3, 1 } } },
        { "backward from the first wraps to the last",
            { { Step::search, 3, true, 3, 1 }, { Step::step, 1, false, 3, 3 }, { Step::step, 1, false, 3, 2 } } },
        { "a backward search starts at the last",
            { { Step::search, 4, false, 4, 4 }, { Step::step, 1, false, 4, 3 }, { Step::step, 1, true, 4, 4 } } },
        { "one match stays the first", { { Step::search, 1, true, 1, 1 }, { Step::step, 1, true, 1, 1 } } },
        { "nothing found", { { Step::search, 0, true, 0, 0 }, { Step::step, 1, true, 0, 0 } } },
        { "too many to count", { { Step::search, G_MAXUINT, false, 1000, 1000 }, { Step::step, 1, true, 1000, 1 } } },
        { "reset", { { Step::search, 5, true, 5, 1 }, { Step::reset, 0, true, 0, 0 } } },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        VLDFindCounter counter;
        for (const auto& step : row.steps) {
            if (step.kind == Step::search) {
                counter.startSearch(step.matchCount, step.forward);
            } else if (step.kind == Step::step) {
                counter.step(step.forward);
            } else {
                counter.reset();
            }
            EXPECT_EQ(counter.count(), step.count);
            EXPECT_EQ(counter.activeMatch(), step.active);
        }
    }
}

} // namespace velder::test
