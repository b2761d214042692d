#pragma once

#include <cstdint>

namespace velder {

// The key hook speaks Windows virtual key codes and the key table's modifier flags, as the shortcut table
// does; GTK speaks key values, hardware key codes and modifier masks.
namespace VLDKeyCodes {

// The code of a key from its key value on the first level of the layout (the unshifted symbol), or 0 when
// the table has none.
std::int32_t windowsKeyCodeForKeyval(unsigned keyval);

// For layouts whose keys carry no Latin symbol: the code of the key in the same place on a US keyboard,
// from the X11 key code (the evdev code plus 8), or 0.
std::int32_t windowsKeyCodeForHardwareKeycode(unsigned keycode);

// GdkModifierType bits as KeyModifier flags (Ctrl is the command flag, Alt the option flag): the one
// reading of GTK's modifiers, for the window's key path and the engine's key hook alike.
std::uint32_t modifiersForState(unsigned state);

} // namespace VLDKeyCodes

} // namespace velder
