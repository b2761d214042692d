#pragma once

#include <gtk/gtk.h>

namespace velder {

// The main menu: Velder, File, Edit, View, History, Window and Help, shown as a menu bar that F10 or a lone
// Alt reveals, as Linux browsers do. Items name the window's actions ("win.newTab") and show their keys from
// the key table, which the window handles itself, so the menu only shows them.
namespace MenuBar {

// The whole menu (a new reference).
GMenuModel* mainMenu();
// A hidden menu bar of the main menu, for the top of a window.
GtkWidget* createMenuBarWidget();
// F10 or a lone Alt show or hide the window's menu bar.
void attachRevealKeys(GtkWindow* window, GtkWidget* menuBar);

} // namespace MenuBar

} // namespace velder
