#pragma once

#include <string>
#include <vector>

namespace velder {

// Starts and stops the page engine. WebKitGTK runs on GLib's main loop, so there is no pump to drive:
// starting means opening the display, preparing the web context and the persistent network session,
// registering the velder:// scheme and sending the engine's warnings to its log.
//
// All of it runs on the main thread.
class VLDEngineRuntime {
public:
    // Idempotent: a second start after a success returns true. On failure `error` holds the reason shown
    // under "Velder could not start." ("Cannot open a display." when there is none).
    static bool start(const std::vector<std::string>& arguments, std::string* error);
    // Idempotent; does nothing when the engine isn't started.
    static void shutdown();
    static bool isStarted();

    // "2.50.6": WebKit's run-time version.
    static std::string engineVersion();
    // GTK's run-time version.
    static std::string toolkitVersion();
};

} // namespace velder
