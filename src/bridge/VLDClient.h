#pragma once

#include <cstdint>
#include <gtk/gtk.h>
#include <memory>
#include <vector>

namespace velder {

class VLDBrowserViewImpl;

// Routes the engine's signals to the view they concern and from there to its delegate. Views are found by
// the bridge's identifier, kept on the engine's view; the table holds them weakly, so a view the shell has
// let go simply stops being found, and every signal of its page gets the engine's default answer.
//
// Main thread only: the engine calls on it, and the table has no lock.
class VLDClient {
public:
    static void registerView(const std::shared_ptr<VLDBrowserViewImpl>& view);
    static void unregisterView(std::uint64_t identifier);
    static std::shared_ptr<VLDBrowserViewImpl> viewForIdentifier(std::uint64_t identifier);
    // Every live view, in no particular order.
    static std::vector<std::shared_ptr<VLDBrowserViewImpl>> liveViews();
    // The view hosting an engine view, or null.
    static std::shared_ptr<VLDBrowserViewImpl> viewForWebView(GtkWidget* webView);

    // Marks an engine view as the browser of a view, and connects its signals.
    static void connectBrowser(GtkWidget* webView, std::uint64_t identifier);
    // Cuts an engine view loose: none of its signals reaches a view any more.
    static void disconnectBrowser(GtkWidget* webView);
};

} // namespace velder
