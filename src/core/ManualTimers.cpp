#include "core/ManualTimers.h"

#include <algorithm>

namespace velder {

Timers::Id ManualTimers::schedule(Duration delay, bool repeats, std::function<void()> work)
{
    Id id = ++m_last;
    m_timers[id] = { m_now + delay, repeats ? std::max(delay, Duration(1)) : Duration(0), std::move(work) };
    return id;
}

void ManualTimers::cancel(Id timer)
{
    m_timers.erase(timer);
}

void ManualTimers::advance(Duration by)
{
    Duration end = m_now + by;
    for (;;) {
        auto next = m_timers.end();
        for (auto it = m_timers.begin(); it != m_timers.end(); ++it) {
            if (it->second.due <= end && (next == m_timers.end() || it->second.due < next->second.due)) {
                next = it;
            }
        }
        if (next == m_timers.end()) {
            break;
        }
        m_now = std::max(m_now, next->second.due);
        auto work = next->second.work;
        if (next->second.period.count() > 0) {
            next->second.due += next->second.period;
        } else {
            m_timers.erase(next);
        }
        work();
    }
    m_now = end;
}

} // namespace velder
