#pragma once

#include <gtk/gtk.h>
#include <string>
#include <vector>

namespace velder {

// Runs the application object: the launch order on first activation, the quit order at shutdown, a second
// launch's URL or window request handed over to the running Velder, and the signals that quit it.
class Launcher {
public:
    // Hands the arguments to a Velder already running (true), or returns false to run here.
    static bool forwardToRunningInstance(GtkApplication* application, const std::vector<std::string>& arguments);
    // Connects the services the windows rely on: the velder:// pages with their host, and the location
    // answers' mirror into the engine. Once per process; the engine must be started.
    static void wireServices();
    // Runs until the last window closes or a quit, and returns the exit status.
    static int run(GtkApplication* application, const std::vector<std::string>& arguments);
};

} // namespace velder
