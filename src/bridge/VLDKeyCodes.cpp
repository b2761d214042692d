#include "bridge/VLDKeyCodes.h"

#include "core/KeyBinding.h"

#include <gdk/gdk.h>
#include <linux/input-event-codes.h>

namespace velder::VLDKeyCodes {

namespace {

struct KeyPair {
    unsigned from;
    std::int32_t to;
};

constexpr KeyPair keyvalTable[] = {
    { GDK_KEY_BackSpace, 8 },
    { GDK_KEY_Tab, 9 },
    { GDK_KEY_ISO_Left_Tab, 9 },
    { GDK_KEY_Return, 13 },
    { GDK_KEY_KP_Enter, 13 },
    { GDK_KEY_Shift_L, 16 },
    { GDK_KEY_Shift_R, 16 },
    { GDK_KEY_Control_L, 17 },
    { GDK_KEY_Control_R, 17 },
    { GDK_KEY_Alt_L, 18 },
    { GDK_KEY_Alt_R, 18 },
    { GDK_KEY_Escape, 27 },
    { GDK_KEY_space, 32 },
    { GDK_KEY_Page_Up, 33 },
    { GDK_KEY_Page_Down, 34 },
    { GDK_KEY_End, 35 },
    { GDK_KEY_Home, 36 },
    { GDK_KEY_Left, 37 },
    { GDK_KEY_Up, 38 },
    { GDK_KEY_Right, 39 },
    { GDK_KEY_Down, 40 },
    { GDK_KEY_Insert, 45 },
    { GDK_KEY_Delete, 46 },
    { GDK_KEY_KP_Multiply, 106 },
    { GDK_KEY_KP_Add, 107 },
    { GDK_KEY_KP_Subtract, 109 },
    { GDK_KEY_KP_Decimal, 110 },
    { GDK_KEY_KP_Divide, 111 },
    { GDK_KEY_semicolon, 186 },
    { GDK_KEY_equal, 187 },
    { GDK_KEY_comma, 188 },
    { GDK_KEY_minus, 189 },
    { GDK_KEY_period, 190 },
    { GDK_KEY_slash, 191 },
    { GDK_KEY_grave, 192 },
    { GDK_KEY_bracketleft, 219 },
    { GDK_KEY_backslash, 220 },
    { GDK_KEY_bracketright, 221 },
    { GDK_KEY_apostrophe, 222 },
};

// Linux input codes of a US keyboard, for layouts without Latin symbols.
constexpr KeyPair hardwareTable[] = {
    { KEY_1, '1' },
    { KEY_2, '2' },
    { KEY_3, '3' },
    { KEY_4, '4' },
    { KEY_5, '5' },
    { KEY_6, '6' },
    { KEY_7, '7' },
    { KEY_8, '8' },
    { KEY_9, '9' },
    { KEY_0, '0' },
    { KEY_Q, 'Q' },
    { KEY_W, 'W' },
    { KEY_E, 'E' },
    { KEY_R, 'R' },
    { KEY_T, 'T' },
    { KEY_Y, 'Y' },
    { KEY_U, 'U' },
    { KEY_I, 'I' },
    { KEY_O, 'O' },
    { KEY_P, 'P' },
    { KEY_A, 'A' },
    { KEY_S, 'S' },
    { KEY_D, 'D' },
    { KEY_F, 'F' },
    { KEY_G, 'G' },
    { KEY_H, 'H' },
    { KEY_J, 'J' },
    { KEY_K, 'K' },
    { KEY_L, 'L' },
    { KEY_Z, 'Z' },
    { KEY_X, 'X' },
    { KEY_C, 'C' },
    { KEY_V, 'V' },
    { KEY_B, 'B' },
    { KEY_N, 'N' },
    { KEY_M, 'M' },
    { KEY_MINUS, 189 },
    { KEY_EQUAL, 187 },
    { KEY_LEFTBRACE, 219 },
    { KEY_RIGHTBRACE, 221 },
    { KEY_SEMICOLON, 186 },
    { KEY_APOSTROPHE, 222 },
    { KEY_GRAVE, 192 },
    { KEY_BACKSLASH, 220 },
    { KEY_COMMA, 188 },
    { KEY_DOT, 190 },
    { KEY_SLASH, 191 },
};

// X11 key codes are the evdev codes shifted by 8.
constexpr unsigned x11KeycodeOffset = 8;

} // namespace

std::int32_t windowsKeyCodeForKeyval(unsigned keyval)
{
    if (keyval >= GDK_KEY_a && keyval <= GDK_KEY_z) {
        return static_cast<std::int32_t>('A' + (keyval - GDK_KEY_a));
    }
    if (keyval >= GDK_KEY_A && keyval <= GDK_KEY_Z) {
        return static_cast<std::int32_t>(keyval);
    }
    if (keyval >= GDK_KEY_0 && keyval <= GDK_KEY_9) {
        return static_cast<std::int32_t>(keyval);
    }
    if (keyval >= GDK_KEY_KP_0 && keyval <= GDK_KEY_KP_9) {
        return static_cast<std::int32_t>(96 + (keyval - GDK_KEY_KP_0));
    }
    if (keyval >= GDK_KEY_F1 && keyval <= GDK_KEY_F24) {
        return static_cast<std::int32_t>(112 + (keyval - GDK_KEY_F1));
    }
    for (const auto& pair : keyvalTable) {
        if (pair.from == keyval) {
            return pair.to;
        }
    }
    return 0;
}

std::int32_t windowsKeyCodeForHardwareKeycode(unsigned keycode)
{
    if (keycode < x11KeycodeOffset) {
        return 0;
    }
    unsigned evdev = keycode - x11KeycodeOffset;
    for (const auto& pair : hardwareTable) {
        if (pair.from == evdev) {
            return pair.to;
        }
    }
    return 0;
}

std::uint32_t modifiersForState(unsigned state)
{
    std::uint32_t modifiers = 0;
    if (state & GDK_CONTROL_MASK) {
        modifiers |= KeyModifier::command;
    }
    if (state & GDK_ALT_MASK) {
        modifiers |= KeyModifier::option;
    }
    if (state & GDK_SHIFT_MASK) {
        modifiers |= KeyModifier::shift;
    }
    return modifiers;
}

} // namespace velder::VLDKeyCodes
