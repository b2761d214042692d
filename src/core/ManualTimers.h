#pragma once

#include "core/Timers.h"

#include <map>

namespace velder {

// Timers that run only when their owner moves the time, for tests: "2999 ms after a clean check the tick
// still shows, 1 ms later it is gone" without waiting on the wall.
class ManualTimers final : public Timers {
public:
    Id schedule(Duration delay, bool repeats, std::function<void()> work) override;
    void cancel(Id timer) override;

    // Moves the time on, running each timer that falls due on the way in the order they fall due.
    void advance(Duration by);
    // Runs what is due now (the zero-delay posts).
    void runDue() { advance(Duration(0)); }
    std::size_t pending() const { return m_timers.size(); }

private:
    struct Timer {
        Duration due;
        Duration period; // 0 for a one-shot
        std::function<void()> work;
    };
    Duration m_now { 0 };
    Id m_last = 0;
    std::map<Id, Timer> m_timers;
};

} // namespace velder
