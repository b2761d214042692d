#pragma once

#include "core/BrowserAction.h"

#include <gtk/gtk.h>
#include <optional>
#include <string>

namespace velder {

// The main menu: File, Edit, View, History, Window and Help under the Velder menu, shown as a menu bar that
// F10 or a lone Alt reveals, as Linux browsers do. Items name the window's actions ("win.newTab"); their keys
// come from the key table, which the window handles itself, so the menu only shows them.
namespace MenuBar {

// The action's name in the window's action group: "newTab", "closeTab" ... (selectTab has no item).
std::string actionName(BrowserAction action);
std::optional<BrowserAction> actionNamed(std::string_view name);

// An item for a browser command, showing its primary key.
GMenuItem* item(const char* title, BrowserAction action);

// The whole menu (a new reference).
GMenuModel* mainMenu();
// A hidden menu bar of the main menu, for the top of a window.
GtkWidget* createMenuBarWidget();
// F10 or a lone Alt show or hide the window's menu bar.
void attachRevealKeys(GtkWindow* window, GtkWidget* menuBar);

} // namespace MenuBar

} // namespace velder
