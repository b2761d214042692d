#include "core/DebouncedFlush.h"
#include "core/ManualClock.h"

#include <atomic>
#include <gtest/gtest.h>

using namespace velder;
using namespace std::chrono_literals;

TEST(SerialQueue, DelayedWorkRunsInDueOrderOnlyOnceItsTimeHasCome)
{
    ManualClock clock;
    SerialQueue queue("local.velder.test", clock);
    std::vector<std::string> ran; // touched only on the queue, read after runDueWork()
    bool onWorker = true;
    auto note = [&](std::string name) {
        return [&, name] {
            onWorker = onWorker && queue.isCurrent();
            ran.push_back(name);
        };
    };
    queue.asyncAfter(30ms, note("c"));
    queue.asyncAfter(10ms, note("a"));
    queue.asyncAfter(10ms, note("b")); // equal times keep their order
    queue.asyncAfter(20ms, note("cancelled"))->cancel();
    queue.async(note("now"));

    clock.advance(0ms);
    EXPECT_EQ(ran, std::vector<std::string> { "now" });
    clock.advance(9ms);
    EXPECT_EQ(ran, std::vector<std::string> { "now" });
    clock.advance(1ms);
    EXPECT_EQ(ran, (std::vector<std::string> { "now", "a", "b" }));
    clock.advance(1h);
    EXPECT_EQ(ran, (std::vector<std::string> { "now", "a", "b", "c" }));
    EXPECT_TRUE(onWorker);
}

TEST(SerialQueue, OnTheSteadyClockWorkAlreadyDueRunsBeforeASync)
{
    SerialQueue queue("local.velder.test");
    std::atomic<int> ran { 0 };
    queue.asyncAfter(0ms, [&] { ++ran; });
    queue.asyncAfter(-1ms, [&] { ++ran; });
    queue.sync([&] { EXPECT_EQ(ran, 2); });
    queue.sync([&] { queue.sync([&] { ++ran; }); }); // sync from the queue itself runs in place
    EXPECT_EQ(ran, 3);
}

// Each row is a list of steps; after each step the number of writes so far must be as given.
TEST(DebouncedFlush, WritesOnceTheDelayAfterTheLastChange)
{
    enum class Do { schedule, advance, flushNow };
    struct Step {
        Do what;
        std::chrono::milliseconds by;
        int writes;
    };
    struct Row {
        const char* name;
        std::vector<Step> steps;
    };
    const auto schedule = [](int writes) { return Step { Do::schedule, 0ms, writes }; };
    const auto advance = [](std::chrono::milliseconds by, int writes) { return Step { Do::advance, by, writes }; };
    const auto flushNow = [](int writes) { return Step { Do::flushNow, 0ms, writes }; };
    for (const Row& row : std::vector<Row> {
             { "a burst costs one write, after its last change",
                 { schedule(0), advance(600ms, 0), schedule(0), schedule(0), advance(1999ms, 0), advance(1ms, 1),
                     advance(1h, 1) } },
             { "each change pushes the write back",
                 { schedule(0), advance(1500ms, 0), schedule(0), advance(1500ms, 0), schedule(0), advance(1999ms, 0),
                     advance(1ms, 1) } },
             { "a change after the write is written again",
                 { schedule(0), advance(2000ms, 1), schedule(1), advance(1999ms, 1), advance(1ms, 2) } },
             { "flushNow writes at once and takes the pending write's place",
                 { schedule(0), advance(1000ms, 0), flushNow(1), advance(1h, 1) } },
             { "flushNow with nothing scheduled still asks the owner", { flushNow(1), advance(1h, 1) } },
         }) {
        SCOPED_TRACE(row.name);
        ManualClock clock;
        int writes = 0; // touched on the flush queue only, read after advance() or flushNow()
        bool onQueue = true;
        DebouncedFlush flush(
            "local.velder.test-flush", 2000ms,
            [&] {
                onQueue = onQueue && flush.queue().isCurrent();
                ++writes;
            },
            clock);
        for (size_t i = 0; i < row.steps.size(); ++i) {
            SCOPED_TRACE(i);
            const Step& step = row.steps[i];
            switch (step.what) {
            case Do::schedule:
                flush.schedule();
                break;
            case Do::advance:
                clock.advance(step.by);
                break;
            case Do::flushNow:
                flush.flushNow();
                break;
            }
            ASSERT_EQ(writes, step.writes);
        }
        EXPECT_TRUE(onQueue);
    }
}
