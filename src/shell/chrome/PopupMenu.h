#pragma once

#include <functional>
#include <gio/gio.h>
#include <gtk/gtk.h>

namespace velder {

// Menus of the chrome: a GMenuModel shown in a GtkPopoverMenu that hangs from a widget of ours. Its items
// activate the actions they name ("win.newWindow"), looked up from the anchor upwards.
//
// The anchor keeps its menu as a child: it must call presentAll() from its size_allocate and unparent()
// when disposed.
namespace PopupMenu {

// Pops `model` up with its top-left corner at (x, y) in the anchor's coordinates. `onClosed` runs when it
// goes, whether an item was picked or not. A menu already open on the anchor closes first.
void popup(GtkWidget* anchor, GMenuModel* model, double x, double y, std::function<void()> onClosed = {});

// The menu open on the anchor, or null.
GtkPopover* openMenu(GtkWidget* anchor);

// Keeps the anchor's menu placed; from the anchor's size_allocate.
void presentAll(GtkWidget* anchor);

// Takes the anchor's menu down for good; from the anchor's dispose.
void unparent(GtkWidget* anchor);

} // namespace PopupMenu

} // namespace velder
