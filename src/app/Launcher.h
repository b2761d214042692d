#pragma once

#include "core/LaunchRequest.h"

#include <gtk/gtk.h>
#include <optional>
#include <string>
#include <vector>

namespace velder {

// Runs the application object: the launch order on first activation, the quit order at shutdown, a second
// launch's URL or window request handed over to the running Velder, and the signals that quit it.
class Launcher {
public:
    enum class Handover { none, done, unanswered };
    // Hands the request to the Velder of this profile already running, before this process touches any
    // file or starts the engine: done once that Velder has taken it, unanswered when it didn't answer in
    // time, none when no Velder of this profile runs (or no session bus does).
    static Handover handOver(const LaunchRequest& request);
    // Connects the services the windows rely on: the velder:// pages with their host, and the location
    // answers' mirror into the engine. Once per process; the engine must be started.
    static void wireServices();
    // Runs until the last window closes or a quit, and returns the exit status. The quit order ends with
    // the loop's last turns, bounded by QuitDrain: at least half a second for the pages' last words and the
    // stores' writes, at most two.
    static int run(GtkApplication* application, const LaunchRequest& request);

    // The program an installed update put in place of this one, to be started once run() has returned.
    static std::optional<std::string> programToRelaunch();

private:
    static void drainAfterQuit();
};

} // namespace velder
