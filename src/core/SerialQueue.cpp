#include "core/SerialQueue.h"

#include <pthread.h>

namespace velder {

SerialQueue::SerialQueue(std::string label)
    : m_label(std::move(label))
{
    m_worker = std::thread([this] { run(); });
}

SerialQueue::~SerialQueue()
{
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
    enqueue(Clock::now(), nullptr, std::move(work));
}

std::shared_ptr<WorkItem> SerialQueue::asyncAfter(std::chrono::milliseconds delay, Work work)
{
    auto item = std::make_shared<WorkItem>();
    enqueue(Clock::now() + delay, item, std::move(work));
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

void SerialQueue::enqueue(Clock::time_point due, std::shared_ptr<WorkItem> item, Work work)
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
        if (Clock::time_point due = first->first; due > Clock::now()) {
            // A copy: the entry may go while the lock is released during the wait.
            m_wake.wait_until(lock, due);
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
