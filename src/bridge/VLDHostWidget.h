#pragma once

#include <cstdint>
#include <gtk/gtk.h>

namespace velder {

// The widget a browser view hands to the window layer: it lays its one child (the engine's view) over its
// whole area, and says when it is first placed in a window, which is when a view makes its browser.
using VLDHostRootedCallback = void (*)(std::uint64_t viewIdentifier);

// A new host (floating reference) for the view with that identifier.
GtkWidget* VLDHostWidgetNew(std::uint64_t viewIdentifier, VLDHostRootedCallback onRooted);

} // namespace velder
