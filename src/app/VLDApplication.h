#pragma once

#include <gtk/gtk.h>

namespace velder {

// The process's one application object, a GtkApplication with the id "local.velder.Velder". A second
// launch finds the running one through D-Bus and hands it its URL.
class VLDApplication {
public:
    // Creates the application object; nothing else may create one first.
    static void installSharedApplication();
    // The application object, or null before installSharedApplication.
    static GtkApplication* shared();
};

} // namespace velder
