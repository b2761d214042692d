#pragma once

#include <gio/gio.h>

namespace velder {

class MenuBuilder;

// The "Check for Updates…" item of the menu bar and the wordmark's menu. Its title is the update
// controller's menu label, and follows it in every menu that shows the item while the label changes
// ("Checking for updates…", "Update ready — v…"). Main thread only.
namespace UpdateMenuItem {

// Appends the item to the menu's current section.
void appendTo(MenuBuilder& menu);

} // namespace UpdateMenuItem

} // namespace velder
