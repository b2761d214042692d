#include "bridge/VLDKeyCodes.h"
#include "core/KeyBinding.h"
#include "core/Shortcuts.h"

#include <gdk/gdk.h>
#include <gtest/gtest.h>

namespace velder::test {

// The engine's key hook runs the shortcut table by key code: each row's key, pressed, must give its code. The
// hook reads the key without Shift, so "+" arrives as the "=" it is typed on.
TEST(KeyCodesTest, EveryShortcutKeyGivesTheCodeOfItsRow)
{
    for (const KeyBinding& row : Shortcuts::bindings()) {
        SCOPED_TRACE(row.key);
        std::string key = row.key == "+" ? "=" : row.key;
        unsigned keyval = key.size() == 1 ? gdk_unicode_to_keyval(key[0]) : gdk_keyval_from_name(key.c_str());
        EXPECT_EQ(VLDKeyCodes::windowsKeyCodeForKeyval(keyval), row.windowsKeyCode);
    }
}

TEST(KeyCodesTest, KeyValuesBecomeWindowsKeyCodes)
{
    struct Row {
        const char* name;
        unsigned keyval;
        std::int32_t code;
    };
    const Row rows[] = {
        { "a capital letter", GDK_KEY_T, 84 },
        { "the last letter", GDK_KEY_z, 90 },
        { "keypad 0", GDK_KEY_KP_0, 96 },
        { "keypad 9", GDK_KEY_KP_9, 105 },
        { "keypad plus", GDK_KEY_KP_Add, 107 },
        { "F24", GDK_KEY_F24, 135 },
        { "Shift+Tab", GDK_KEY_ISO_Left_Tab, 9 },
        { "keypad Enter", GDK_KEY_KP_Enter, 13 },
        { "Control", GDK_KEY_Control_R, 17 },
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
        { "the key of T", 28, 84 },
        { "the key of 1", 10, 49 },
        { "the key of =", 21, 187 },
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
