#pragma once

#include "core/Clock.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace velder {

// A piece of work submitted to a SerialQueue, which can be cancelled until it starts.
class WorkItem {
public:
    void cancel() { m_cancelled.store(true); }
    bool isCancelled() const { return m_cancelled.load(); }

private:
    std::atomic<bool> m_cancelled { false };
};

// One worker thread that runs submitted work in order, at once or after a delay. The stores write
// their files here, so that no file work happens on the main thread or under a store's lock.
// Delays are measured on the clock given, which must outlive the queue.
class SerialQueue {
public:
    using Work = std::function<void()>;

    explicit SerialQueue(std::string label, Clock& clock = Clock::steady());
    // Drops work that hasn't started, waits for the running one, and ends the worker.
    ~SerialQueue();
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    const std::string& label() const { return m_label; }

    void async(Work work);
    // Runs the work on the queue once the delay has passed, unless it was cancelled by then.
    std::shared_ptr<WorkItem> asyncAfter(std::chrono::milliseconds delay, Work work);
    // Runs the work on the queue and waits for it; runs in place when called from the queue itself.
    void sync(const Work& work);

    bool isCurrent() const { return std::this_thread::get_id() == m_worker.get_id(); }

    // Returns once all work due by the clock's present time has run, including work that it submitted
    // for the same time. For clocks that move by hand; not to be called from the queue itself.
    void runDueWork();

private:
    struct Entry {
        std::shared_ptr<WorkItem> item;
        Work work;
    };
    void enqueue(Clock::TimePoint due, std::shared_ptr<WorkItem> item, Work work);
    void run();

    std::string m_label;
    Clock& m_clock;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    // Ordered by due time, then by submission, so that equal times keep their order.
    std::multimap<Clock::TimePoint, Entry> m_pending;
    bool m_stopping = false;
    std::thread m_worker;
};

} // namespace velder
