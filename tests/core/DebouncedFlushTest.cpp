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

// The debounce itself is checked through the stores that use it (StoreFlushTest); here, what flushNow does.
TEST(DebouncedFlush, FlushNowWritesAtOnceInPlaceOfThePendingWrite)
{
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
    flush.flushNow();
    EXPECT_EQ(writes, 1) << "with nothing scheduled, flushNow still asks the owner";
    flush.schedule();
    clock.advance(1000ms);
    EXPECT_EQ(writes, 1);
    flush.flushNow();
    EXPECT_EQ(writes, 2);
    clock.advance(1h);
    EXPECT_EQ(writes, 2) << "flushNow took the pending write's place";
    EXPECT_TRUE(onQueue);
}
