#include "core/DebouncedFlush.h"

namespace velder {

DebouncedFlush::DebouncedFlush(
    std::string queueLabel, std::chrono::milliseconds delay, std::function<void()> writeIfDirty, Clock& clock)
    : m_delay(delay)
    , m_writeIfDirty(std::move(writeIfDirty))
    , m_queue(std::move(queueLabel), clock)
{
}

void DebouncedFlush::schedule()
{
    m_queue.async([this] {
        if (m_pending) {
            m_pending->cancel();
        }
        m_pending = m_queue.asyncAfter(m_delay, m_writeIfDirty);
    });
}

void DebouncedFlush::flushNow()
{
    m_queue.sync([this] {
        if (m_pending) {
            m_pending->cancel();
            m_pending.reset();
        }
        m_writeIfDirty();
    });
}

} // namespace velder
