#pragma once

#include "core/KeyBinding.h"

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

namespace velder {

// The one table of keys, used by the menu, the window's key handling and the engine's key hook, so that a
// key does the same thing whether the focus is in the chrome or in a page. The first matching row wins.
namespace Shortcuts {

// The 39 rows of every platform, then the rows that Linux habit adds (F5, Alt+←, Alt+D, Ctrl+Page Down ...).
const std::vector<KeyBinding>& bindings();

// The key and modifiers of the first primary row of the action (selectTab compares its position too).
std::optional<std::pair<std::string, std::uint32_t>> menuKeyEquivalent(BrowserAction action);

// The matching rule shared by both key paths: a row whose key is "+" ignores shift; any other row needs
// exactly its modifiers.
bool modifiersMatch(const KeyBinding& binding, std::uint32_t flags);

// The window's key path, given the key text (as KeyBinding::key) and the event's KeyModifier flags.
// Keys with neither Ctrl nor Alt go on to the focused widget, unless they are function keys.
std::optional<BrowserAction> actionForKey(std::string_view key, std::uint32_t flags);

// The engine's key path, given the Windows key code and the event's KeyModifier flags.
std::optional<BrowserAction> actionForWindowsKeyCode(std::int32_t code, std::uint32_t flags);

} // namespace Shortcuts

} // namespace velder
