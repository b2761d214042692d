#include "core/ManualClock.h"

#include "core/SerialQueue.h"

#include <algorithm>

namespace velder {

void ManualClock::waitUntil(std::condition_variable& wake, std::unique_lock<std::mutex>& lock, TimePoint) const
{
    wake.wait(lock);
}

void ManualClock::attach(SerialQueue& queue)
{
    std::lock_guard lock(m_queuesMutex);
    m_queues.push_back(&queue);
}

void ManualClock::detach(SerialQueue& queue)
{
    std::lock_guard lock(m_queuesMutex);
    std::erase(m_queues, &queue);
}

void ManualClock::advance(Duration by)
{
    std::lock_guard lock(m_queuesMutex);
    for (SerialQueue* queue : m_queues) {
        queue->runDueWork();
    }
    m_now.store(m_now.load() + by);
    for (SerialQueue* queue : m_queues) {
        queue->runDueWork();
    }
}

} // namespace velder
