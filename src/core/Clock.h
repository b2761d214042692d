#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace velder {

class SerialQueue;

// Where a SerialQueue reads the time and how it sleeps until its delayed work is due. The program runs on
// the steady clock; tests give their queues a ManualClock and move it by hand.
//
// now() and waitUntil() are called on the queue's worker with the queue's lock held, so they must not block
// on anything a queue's owner may hold.
class Clock {
public:
    using TimePoint = std::chrono::steady_clock::time_point;
    using Duration = std::chrono::steady_clock::duration;

    virtual ~Clock() = default;

    virtual TimePoint now() const = 0;
    // Waits on `wake` until `due` has come by this clock or `wake` is notified; `lock` is held on return.
    virtual void waitUntil(std::condition_variable& wake, std::unique_lock<std::mutex>& lock, TimePoint due) const = 0;
    // A queue is attached from its construction until its destruction begins.
    virtual void attach(SerialQueue&) { }
    virtual void detach(SerialQueue&) { }

    // The monotonic clock of the system. It is never destroyed, so queues that outlive main() may still use it.
    static Clock& steady();
};

} // namespace velder
