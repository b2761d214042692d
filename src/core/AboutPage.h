#pragma once

#include "core/BrowserAction.h"
#include "core/KeyBinding.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velder {

// velder://about/: the versions, where the data lives, and the keyboard table built from the key table
// itself, so that it can't drift from the real keys. Main thread.
namespace AboutPage {

std::string render();
// "<h2>heading</h2><dl class="kv">" with a dt and dd for each pair.
std::string rows(std::string_view heading, const std::vector<std::pair<std::string, std::string>>& pairs);
std::string keyboardSection();

// "Next tab", "Reload, ignoring cache" ...
std::string_view label(BrowserAction action);
// The modifiers as "Ctrl+", "Alt+", "Shift+", then the key: "Ctrl+Shift+W", "Alt+←", "F5".
std::string glyphs(const KeyBinding& binding);
// "Tab", "Esc", "←", "→", "Page Down", F-keys as they are, printable keys upper-cased.
std::string keyGlyph(std::string_view key);

} // namespace AboutPage

} // namespace velder
