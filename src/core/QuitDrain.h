#pragma once

#include <chrono>

namespace velder {

// The last turns of the main loop at quit: long enough for the pages' last words (pagehide beacons) and the
// stores' writes to get out, never long enough to hold up a logout, and never a spin on work that keeps
// coming back. The loop asks at each turn what to do, with the time since the quit began and whether work
// is waiting.
namespace QuitDrain {

using Duration = std::chrono::steady_clock::duration;

inline constexpr std::chrono::milliseconds minimum { 500 };
inline constexpr std::chrono::milliseconds maximum { 2000 };
// How long a turn with nothing to do waits for something to come.
inline constexpr std::chrono::milliseconds idleWait { 10 };

enum class Step { dispatch, wait, stop };

constexpr Step next(Duration elapsed, bool workWaiting)
{
    if (elapsed >= maximum) {
        return Step::stop;
    }
    if (workWaiting) {
        return Step::dispatch;
    }
    return elapsed >= minimum ? Step::stop : Step::wait;
}

} // namespace QuitDrain

} // namespace velder
