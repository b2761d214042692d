#pragma once

#include <cstdint>
#include <gtk/gtk.h>
#include <string>

namespace velder {

class VLDBrowserViewImpl;

// Which web process a new page runs in. WebKit starts a process for every page unless the page is created
// related to another. Velder relates a tab to an open page of its site (ProcessSharing), and the first page
// of the persistent session to a process started before the first window was built.
class VLDPageProcess {
public:
    struct Placement {
        GtkWidget* webView; // a new engine view, floating
        std::uint64_t processGroup; // the view whose process it joined, or the view itself
    };
    // The engine view for `view`'s browser, about to load `url`, with the settings every page has.
    static Placement place(const VLDBrowserViewImpl& view, const std::string& url);

    // A placeholder page of the persistent session that starts a web process now.
    static void startEarly();
    // The placeholder goes if no page took its process.
    static void releaseUnclaimed();
    // A page committed its first document, or its view went: if it took the early process, the placeholder
    // is no longer needed to keep that process and goes.
    static void pageWentOrCommitted(std::uint64_t identifier);
    // The placeholder's engine view, while there is one.
    static GtkWidget* earlyView();
};

} // namespace velder
