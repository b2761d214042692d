#pragma once

#include "core/BrowserAction.h"

#include <cstdint>
#include <string>

namespace velder {

// Modifier flags of the key table. On Linux "command" is Ctrl (GTK's primary modifier) and "option" is
// Alt; the rows that say "control" on other systems also use Ctrl, so the control flag stays unused here.
namespace KeyModifier {
inline constexpr std::uint32_t command = 0x100000; // Ctrl
inline constexpr std::uint32_t option = 0x80000; // Alt
inline constexpr std::uint32_t control = 0x40000;
inline constexpr std::uint32_t shift = 0x20000;
} // namespace KeyModifier

// One row of the key table.
struct KeyBinding {
    BrowserAction action;
    // A printable key as its lower-case character ("t", "+", "["), any other by its GDK key name
    // ("Tab", "Escape", "Left", "Right", "Home", "Page_Down", "Page_Up", "F3", "F5").
    std::string key;
    std::uint32_t modifiers; // exact, from KeyModifier
    std::int32_t windowsKeyCode; // the engine's key code of the same key
    bool isPrimary; // this row's key is the one the menu shows
};

} // namespace velder
