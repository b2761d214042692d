#include "bridge/VLDKeyCodes.h"
#include "core/KeyBinding.h"

#include <gdk/gdk.h>
#include <gtest/gtest.h>

namespace velder::test {

TEST(KeyCodesTest, KeyValuesBecomeWindowsKeyCodes)
{
    struct Row {
        const char* name;
        unsigned keyval;
        std::int32_t code;
    };
    const Row rows[] = {
        { "t", GDK_KEY_t, 84 },
        { "T", GDK_KEY_T, 84 },
        { "a", GDK_KEY_a, 65 },
        { "z", GDK_KEY_z, 90 },
        { "0", GDK_KEY_0, 48 },
        { "9", GDK_KEY_9, 57 },
        { "keypad 0", GDK_KEY_KP_0, 96 },
        { "keypad 9", GDK_KEY_KP_9, 105 },
        { "F1", GDK_KEY_F1, 112 },
        { "F5", GDK_KEY_F5, 116 },
        { "F12", GDK_KEY_F12, 123 },
        { "F24", GDK_KEY_F24, 135 },
        { "Tab", GDK_KEY_Tab, 9 },
        { "Shift+Tab", GDK_KEY_ISO_Left_Tab, 9 },
        { "Return", GDK_KEY_Return, 13 },
        { "keypad Enter", GDK_KEY_KP_Enter, 13 },
        { "Escape", GDK_KEY_Escape, 27 },
        { "BackSpace", GDK_KEY_BackSpace, 8 },
        { "space", GDK_KEY_space, 32 },
        { "Page Up", GDK_KEY_Page_Up, 33 },
        { "Page Down", GDK_KEY_Page_Down, 34 },
        { "End", GDK_KEY_End, 35 },
        { "Home", GDK_KEY_Home, 36 },
        { "Left", GDK_KEY_Left, 37 },
        { "Up", GDK_KEY_Up, 38 },
        { "Right", GDK_KEY_Right, 39 },
        { "Down", GDK_KEY_Down, 40 },
        { "Insert", GDK_KEY_Insert, 45 },
        { "Delete", GDK_KEY_Delete, 46 },
        { ";", GDK_KEY_semicolon, 186 },
        { "=", GDK_KEY_equal, 187 },
        { ",", GDK_KEY_comma, 188 },
        { "-", GDK_KEY_minus, 189 },
        { ".", GDK_KEY_period, 190 },
        { "/", GDK_KEY_slash, 191 },
        { "`", GDK_KEY_grave, 192 },
        { "[", GDK_KEY_bracketleft, 219 },
        { "\\", GDK_KEY_backslash, 220 },
        { "]", GDK_KEY_bracketright, 221 },
        { "'", GDK_KEY_apostrophe, 222 },
        { "Shift", GDK_KEY_Shift_L, 16 },
        { "Control", GDK_KEY_Control_R, 17 },
        { "Alt", GDK_KEY_Alt_L, 18 },
        { "a Cyrillic letter", GDK_KEY_Cyrillic_ve, 0 },
        { "plus (a shifted symbol)", GDK_KEY_plus, 0 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(VLDKeyCodes::windowsKeyCodeForKeyval(row.keyval), row.code);
    }
}

TEST(KeyCodesTest, HardwareCodesStandInForLayoutsWithoutLatinKeys)
{
    struct Row {
        const char* name;
        unsigned keycode;
        std::int32_t code;
    };
    // X11 key codes: the evdev code plus 8.
    const Row rows[] = {
        { "the key of A", 38, 65 },
        { "the key of L", 46, 76 },
        { "the key of T", 28, 84 },
        { "the key of 1", 10, 49 },
        { "the key of =", 21, 187 },
        { "the key of /", 61, 191 },
        { "below the offset", 5, 0 },
        { "a key not in the table", 9, 0 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(VLDKeyCodes::windowsKeyCodeForHardwareKeycode(row.keycode), row.code);
    }
}

TEST(KeyCodesTest, ModifiersBecomeVelderBits)
{
    struct Row {
        const char* name;
        unsigned state;
        std::uint32_t modifiers;
    };
    const Row rows[] = {
        { "none", 0, 0 },
        { "Ctrl is the command flag", GDK_CONTROL_MASK, KeyModifier::command },
        { "Alt is the option flag", GDK_ALT_MASK, KeyModifier::option },
        { "Shift", GDK_SHIFT_MASK, KeyModifier::shift },
        { "Ctrl+Shift", GDK_CONTROL_MASK | GDK_SHIFT_MASK, KeyModifier::command | KeyModifier::shift },
        { "all three", GDK_CONTROL_MASK | GDK_SHIFT_MASK | GDK_ALT_MASK,
            KeyModifier::command | KeyModifier::shift | KeyModifier::option },
        { "buttons and locks are not keys", GDK_BUTTON1_MASK | GDK_LOCK_MASK, 0 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(VLDKeyCodes::modifiersForState(row.state), row.modifiers);
    }
}

} // namespace velder::test
