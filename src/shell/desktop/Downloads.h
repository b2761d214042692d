#pragma once

#include "bridge/VLDDownloadItem.h"

#include <memory>
#include <string>

typedef struct _GtkWindow GtkWindow;

namespace velder {

class VLDDownloadCallback;

// Where a download goes, under a name that overwrites nothing, and how its progress shows on the desktop:
// the launcher's progress bar while it runs, the recent files and a notification when it is done. The engine
// does the transfer. Main thread only.
class Downloads {
public:
    // Answers the engine's question with exactly one continueWithPath or cancel: the download folder under
    // a reserved numbered name ("report.pdf", then "report (2).pdf" ...), or a save dialog when the settings
    // ask for one.
    static void decideDestination(
        const VLDDownloadItem& item, GtkWindow* window, std::shared_ptr<VLDDownloadCallback> callback);
    // At each progress report.
    static void update(const VLDDownloadItem& item);

    static int inFlightCount();
};

} // namespace velder
