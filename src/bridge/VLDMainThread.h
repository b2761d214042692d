#pragma once

#include <functional>

namespace velder {

// The engine runs on GLib's main loop, on the main thread: these are the two hops of the program.

// On the main thread: runs the work at once, in place. Elsewhere: queues it on the main loop.
void VLDRunOnMainThread(std::function<void()> work);

// Always queues the work on the main loop, also from the main thread: it runs after the current call.
void VLDPostToMainThread(std::function<void()> work);

bool VLDIsMainThread();

} // namespace velder
