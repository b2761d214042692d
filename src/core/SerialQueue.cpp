#include "core/SerialQueue.h"

#include <pthread.h>

namespace velder {

SerialQueue::SerialQueue(std::string label, Clock& clock)
    : m_label(std::move(label))
    , m_clock(clock)
{
    m_worker = std::thread([this] { run(); });
    m_clock.attach(*this);
}

SerialQueue::~SerialQueue()
{
    m_clock.detach(*this);
    {
        std::lock_guard lock(m_mutex);
        m_stopping = true;
        m_pending.clear();
    }
    m_wake.notify_all();
    if (m_worker.joinable()) {
        m_worker.join();
    }
}

void SerialQueue::async(Work work)
{
    enqueue(m_clock.now(), nullptr, std::move(work));
}

std::shared_ptr<WorkItem> SerialQueue::asyncAfter(std::chrono::milliseconds delay, Work work)
{
    auto item = std::make_shared<WorkItem>();
    enqueue(m_clock.now() + delay, item, std::move(work));
    return item;
}

void SerialQueue::sync(const Work& work)
{
    if (isCurrent()) {
        work();
        return;
    }
    std::mutex doneMutex;
    std::condition_variable doneSignal;
    bool done = false;
    async([&] {
        work();
        std::lock_guard lock(doneMutex);
        done = true;
        doneSignal.notify_all();
    });
    std::unique_lock lock(doneMutex);
    doneSignal.wait(lock, [&] { return done; });
}

void SerialQueue::runDueWork()
{
    while (true) {
        // The empty work goes in after everything due by now, so it runs last of them.
        sync([] {});
        std::lock_guard lock(m_mutex);
        if (m_stopping || m_pending.empty() || m_pending.begin()->first > m_clock.now()) {
            return;
        }
    }
}

void SerialQueue::enqueue(Clock::TimePoint due, std::shared_ptr<WorkItem> item, Work work)
{
    {
        std::lock_guard lock(m_mutex);
        if (m_stopping) {
            return;
        }
        m_pending.emplace(due, Entry { std::move(item), std::move(work) });
    }
    m_wake.notify_all();
}

void SerialQueue::run()
{
    // The kernel keeps 15 characters of a thread's name: "vault-flush" rather than the full label.
    std::string name = m_label;
    if (auto dot = name.rfind('.'); dot != std::string::npos) {
        name = name.substr(dot + 1);
    }
    pthread_setname_np(pthread_self(), name.substr(0, 15).c_str());

    std::unique_lock lock(m_mutex);
    while (true) {
        if (m_stopping) {
            return;
        }
        if (m_pending.empty()) {
            m_wake.wait(lock);
            continue;
        }
        auto first = m_pending.begin();
        if (Clock::TimePoint due = first->first; due > m_clock.now()) {
            // A copy: the entry may go while the lock is released during the wait.
            m_clock.waitUntil(m_wake, lock, due);
            continue;
        }
        Entry entry = std::move(first->second);
        m_pending.erase(first);
        if (entry.item && entry.item->isCancelled()) {
            continue;
        }
        lock.unlock();
        entry.work();
        lock.lock();
    }
}

} // namespace velder
