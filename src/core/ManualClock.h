#pragma once

#include "core/Clock.h"

#include <atomic>
#include <mutex>
#include <vector>

namespace velder {

// A clock that stands still until its owner moves it, for tests. Queues on it run delayed work only inside
// advance(), which returns once they have run everything due by the new time: a test can say "1999 ms
// later nothing has been written, 1 ms after that the file is there" without waiting on the wall.
//
// advance() is called from outside the attached queues. The clock must outlive them.
class ManualClock final : public Clock {
public:
    TimePoint now() const override { return m_now.load(); }
    // Sleeps until notified: the time moves only in advance(), which wakes the queues itself.
    void waitUntil(std::condition_variable& wake, std::unique_lock<std::mutex>& lock, TimePoint due) const override;
    void attach(SerialQueue& queue) override;
    void detach(SerialQueue& queue) override;

    // Lets each attached queue finish what is due at the present time (so that work submitted just before,
    // such as a debounce being rescheduled, reads the time it was submitted at), moves the time on, then
    // waits until each queue has run what is due by the new time.
    void advance(Duration by);

private:
    std::atomic<TimePoint> m_now { TimePoint() };
    std::mutex m_queuesMutex; // held for a whole advance(), so that no queue ends during one
    std::vector<SerialQueue*> m_queues; // guarded by m_queuesMutex
};

} // namespace velder
