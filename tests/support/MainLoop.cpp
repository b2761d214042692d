#include "support/MainLoop.h"

#include <glib.h>

namespace velder::test {

bool runMainLoopUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout)
{
    auto deadline = std::chrono::steady_clock::now() + timeout;
    // A ticking source, so that a blocking iteration comes back to look at the clock.
    guint tick = g_timeout_add(
        5, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
    bool satisfied = condition();
    while (!satisfied && std::chrono::steady_clock::now() < deadline) {
        g_main_context_iteration(nullptr, TRUE);
        satisfied = condition();
    }
    g_source_remove(tick);
    return satisfied;
}

void runMainLoopFor(std::chrono::milliseconds duration)
{
    runMainLoopUntil([] { return false; }, duration);
}

} // namespace velder::test
