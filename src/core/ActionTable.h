#pragma once

#include "core/BrowserAction.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace velder {

// One command that a menu can name: a browser command of the key table, or one of the window's own
// (about, quit, editing, window states).
struct ActionRow {
    std::string_view name; // in the window's action group: "newTab", "quit"
    std::string_view label; // in the menu bar: "New Tab", "Quit Velder"
    std::optional<BrowserAction> action; // a browser command: its keys are the key table's
    std::string_view description = {}; // a browser command's line in the about page's key list
    // The window's own commands carry their key here, in the key table's terms (KeyModifier flags).
    std::string_view key;
    std::uint32_t modifiers = 0;
    // The window runs the key itself (quit, full screen); the other keys belong to the focused widget
    // (copy, paste), so the menu only shows them.
    bool isWindowKey = false;
};

// The one table of commands that the menu bar, the popup menus, the window's actions and its key path read.
namespace ActionTable {

const std::vector<ActionRow>& rows();
const ActionRow* named(std::string_view name);
// The row of a browser command; none for selectTab, which lives in the key paths only.
const ActionRow* forAction(BrowserAction action);
// The window's own command for a key (KeyModifier flags), when one of its rows runs it.
const ActionRow* windowKey(std::string_view key, std::uint32_t flags);

} // namespace ActionTable

} // namespace velder
