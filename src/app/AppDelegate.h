#pragma once

#include <gtk/gtk.h>
#include <string>
#include <vector>

namespace velder {

// Opens the first windows, holds what lives as long as the process, and runs the quit order.
class AppDelegate {
public:
    // Runs the application until it quits, and returns the exit status. SIGTERM, SIGINT and SIGHUP quit
    // by the same orderly path as the quit command, so the stores are flushed.
    static int run(GtkApplication* application, const std::vector<std::string>& arguments);

    // The quit order: the stores are written before the process goes.
    static void applicationWillTerminate();
};

} // namespace velder
