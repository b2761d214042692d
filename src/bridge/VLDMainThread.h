#pragma once

#include "glib/MainLoop.h"

#include <functional>

namespace velder {

// The engine runs on GLib's main loop, on the main thread: these are the two hops of the program, the
// bridge's names for the one way Velder posts work to the main loop.

// On the main thread: runs the work at once, in place. Elsewhere: queues it on the main loop.
inline void VLDRunOnMainThread(std::function<void()> work)
{
    MainLoop::run(std::move(work));
}

// Always queues the work on the main loop, also from the main thread: it runs after the current call.
inline void VLDPostToMainThread(std::function<void()> work)
{
    MainLoop::post(std::move(work));
}

inline bool VLDIsMainThread()
{
    return MainLoop::isMainThread();
}

} // namespace velder
