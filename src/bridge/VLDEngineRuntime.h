#pragma once

#include <optional>
#include <string>
#include <vector>

namespace velder {

// Starts and stops the page engine. WebKitGTK runs on GLib's main loop, so there is no pump to drive:
// starting means opening the display, preparing the web context and the persistent network session,
// registering the velder:// scheme and sending the engine's warnings to its log. From then on standard
// error is the engine log ("engine_log.txt"), which the engine's own processes inherit; Velder's lines
// still go to the standard error the program was started with.
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

    // Whether pages and chrome are drawn on the CPU: on a machine without a GPU render node, where GL would be
    // Mesa's software rasterizer, slower and heavier than drawing on the CPU. Decided once, at start.
    static bool softwareRendering();
    // The decision itself: software without a render node, unless GSK_RENDERER names a renderer.
    static bool chooseSoftwareRendering(bool hasRenderNode, const char* gskRenderer);

    // "2.50.6": WebKit's run-time version.
    static std::string engineVersion();
    // GTK's run-time version.
    static std::string toolkitVersion();

    // The port of the remote inspector from the arguments: the value of the last
    // "--remote-debugging-port=N" whose N is a number from 1 to 65535; an invalid one leaves the one before.
    static std::optional<int> remoteDebuggingPort(const std::vector<std::string>& arguments);
};

} // namespace velder
