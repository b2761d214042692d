#include "core/Clock.h"

namespace velder {

namespace {

class SteadyClock final : public Clock {
public:
    TimePoint now() const override { return std::chrono::steady_clock::now(); }

    void waitUntil(std::condition_variable& wake, std::unique_lock<std::mutex>& lock, TimePoint due) const override
    {
        wake.wait_until(lock, due);
    }
};

} // namespace

Clock& Clock::steady()
{
    // Leaked on purpose: the shared stores' queues end during static destruction, after any local static.
    static Clock& clock = *new SteadyClock();
    return clock;
}

} // namespace velder
