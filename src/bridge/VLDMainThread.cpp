#include "bridge/VLDMainThread.h"

#include <glib.h>
#include <thread>

namespace velder {

namespace {

// Static initialisation runs on the thread that runs main().
const std::thread::id mainThreadId = std::this_thread::get_id();

using Work = std::function<void()>;

gboolean runWork(gpointer data)
{
    (*static_cast<Work*>(data))();
    return G_SOURCE_REMOVE;
}

void deleteWork(gpointer data)
{
    delete static_cast<Work*>(data);
}

} // namespace

bool VLDIsMainThread()
{
    return std::this_thread::get_id() == mainThreadId;
}

void VLDRunOnMainThread(std::function<void()> work)
{
    if (VLDIsMainThread()) {
        work();
        return;
    }
    // Not g_main_context_invoke: from a thread of its own, while the main loop isn't iterating, that acquires
    // the default context and runs the work right there. An idle source always runs on the main loop.
    VLDPostToMainThread(std::move(work));
}

void VLDPostToMainThread(std::function<void()> work)
{
    g_idle_add_full(G_PRIORITY_DEFAULT, runWork, new Work(std::move(work)), deleteWork);
}

} // namespace velder
