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
    // From another thread this queues on the default context and wakes it.
    g_main_context_invoke_full(nullptr, G_PRIORITY_DEFAULT, runWork, new Work(std::move(work)), deleteWork);
}

void VLDPostToMainThread(std::function<void()> work)
{
    g_idle_add_full(G_PRIORITY_DEFAULT, runWork, new Work(std::move(work)), deleteWork);
}

} // namespace velder
