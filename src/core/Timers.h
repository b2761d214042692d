#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

namespace velder {

// Timers on the main loop, as the updater and its title-bar slot use them: the program's run on GLib's
// default main context; tests hand over ManualTimers and move the time themselves. Main thread only.
class Timers {
public:
    using Id = std::uint64_t; // never 0
    using Duration = std::chrono::milliseconds;

    virtual ~Timers() = default;

    // Runs `work` once the delay has passed, then every `delay` again when `repeats`. A delay of 0 runs it
    // after the current call has returned.
    virtual Id schedule(Duration delay, bool repeats, std::function<void()> work) = 0;
    // Stops a timer; one that has run out, or was stopped already, is no error.
    virtual void cancel(Id timer) = 0;

    // The default main context's timers. Never destroyed.
    static Timers& mainLoop();
};

} // namespace velder
