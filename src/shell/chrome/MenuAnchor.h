#pragma once

#include <gtk/gtk.h>

namespace velder {

// An invisible widget over an area that a menu can hang from (the page's menu hangs over the page). It takes
// no pointer input, and keeps the menu placed as PopupMenu asks of its anchors.
namespace MenuAnchor {

GtkWidget* create();

} // namespace MenuAnchor

} // namespace velder
