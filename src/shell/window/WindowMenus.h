#pragma once

#include "glib/GObjectPtr.h"

#include <cstddef>
#include <gio/gio.h>

namespace velder {

class MainWindow;
struct VLDContextMenuInfo;

// The window's three popup menus: the wordmark's, a tab's and the page's. Their items name the window's
// actions; none shows a key (the menu bar does).
namespace WindowMenus {

GObjectPtr<GMenuModel> wordmarkMenu();
GObjectPtr<GMenuModel> tabMenu(const MainWindow& window, std::size_t index);
// The page's menu for what is under the pointer; null for a text field, which keeps the engine's own.
GObjectPtr<GMenuModel> pageMenu(const VLDContextMenuInfo& info);
// Shows the page's menu at the pointer, once the engine's call has returned. False tells the engine to
// show none of its own.
bool showPageMenu(MainWindow& window, const VLDContextMenuInfo& info);

} // namespace WindowMenus

} // namespace velder
