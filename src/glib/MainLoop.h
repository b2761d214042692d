#pragma once

#include <glib.h>

#include <chrono>
#include <functional>
#include <memory>
#include <thread>

namespace velder::MainLoop {

// Static initialisation runs on the thread that runs main(), which runs GLib's default main loop.
inline const std::thread::id mainThreadId = std::this_thread::get_id();

inline bool isMainThread()
{
    return std::this_thread::get_id() == mainThreadId;
}

namespace detail {
using Work = std::function<void()>;
inline gboolean runOnce(gpointer data)
{
    (*static_cast<Work*>(data))();
    return G_SOURCE_REMOVE;
}
inline void destroy(gpointer data)
{
    delete static_cast<Work*>(data);
}
} // namespace detail

// Queues the work on the main loop, from any thread, also from the main thread itself: it runs after the
// current call has returned. Not g_main_context_invoke: from another thread while the loop isn't iterating,
// that would acquire the context and run the work right there. Returns the source, for removal.
inline guint post(std::function<void()> work)
{
    return g_idle_add_full(G_PRIORITY_DEFAULT, detail::runOnce, new detail::Work(std::move(work)), detail::destroy);
}

// The same, once the delay has passed.
inline guint postAfter(std::chrono::milliseconds delay, std::function<void()> work)
{
    return g_timeout_add_full(G_PRIORITY_DEFAULT, static_cast<guint>(delay.count()), detail::runOnce,
        new detail::Work(std::move(work)), detail::destroy);
}

// On the main thread the work runs at once, in place; elsewhere it is queued.
inline void run(std::function<void()> work)
{
    if (isMainThread()) {
        work();
    } else {
        post(std::move(work));
    }
}

// Queues work on an object that may be gone by the time it runs: then nothing happens.
template<class T, class F> guint post(std::weak_ptr<T> owner, F work)
{
    return post([owner = std::move(owner), work = std::move(work)]() mutable {
        if (auto held = owner.lock()) {
            work(*held);
        }
    });
}

} // namespace velder::MainLoop
