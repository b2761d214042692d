#pragma once

#include <chrono>
#include <cstdint>
#include <map>

namespace velder {

// At most one event per key in each `gap`: what a download's progress reports are thinned to before they
// reach the desktop, which redraws a panel at every signal. The caller brings the time, so a test does too.
class RateLimit {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    explicit RateLimit(std::chrono::milliseconds gap)
        : m_gap(gap)
    {
    }

    // Whether an event for `key` at `now` may go out; one that may is counted as gone.
    bool admit(std::uint32_t key, TimePoint now)
    {
        auto [last, first] = m_last.try_emplace(key, now);
        if (first || now - last->second >= m_gap) {
            last->second = now;
            return true;
        }
        return false;
    }

    void forget(std::uint32_t key) { m_last.erase(key); }

private:
    std::chrono::milliseconds m_gap;
    std::map<std::uint32_t, TimePoint> m_last;
};

} // namespace velder
