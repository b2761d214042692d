#include "bridge/VLDKeyCodes.h"
#include "core/KeyBinding.h"
#include "core/Shortcuts.h"

#include <functional>
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

// Key values and, for layouts without Latin keys, X11 hardware codes (the evdev code plus 8) become Windows key
// codes; the modifier state becomes Velder's bits.
TEST(KeyCodesTest, KeysAndModifiersBecomeVelderCodes)
{
    using Convert = std::function<std::int64_t(unsigned)>;
    const Convert keyval = VLDKeyCodes::windowsKeyCodeForKeyval;
    const Convert hardware = VLDKeyCodes::windowsKeyCodeForHardwareKeycode;
    const Convert state = VLDKeyCodes::modifiersForState;
    struct Row {
        const char* name;
        const Convert& convert;
        unsigned input;
        std::int64_t expected;
    };
    const Row rows[] = {
        { "a capital letter", keyval, GDK_KEY_T, 84 },
        { "the last letter", keyval, GDK_KEY_z, 90 },
        { "keypad 0", keyval, GDK_KEY_KP_0, 96 },
        { "keypad 9", keyval, GDK_KEY_KP_9, 105 },
        { "keypad plus", keyval, GDK_KEY_KP_Add, 107 },
        { "F24", keyval, GDK_KEY_F24, 135 },
        { "Shift+Tab", keyval, GDK_KEY_ISO_Left_Tab, 9 },
        { "keypad Enter", keyval, GDK_KEY_KP_Enter, 13 },
        { "Control", keyval, GDK_KEY_Control_R, 17 },
        { "a Cyrillic letter", keyval, GDK_KEY_Cyrillic_ve, 0 },
        { "plus (a shifted symbol)", keyval, GDK_KEY_plus, 0 },
        { "the key of A", hardware, 38, 65 },
        { "the key of 1", hardware, 10, 49 },
        { "the key of =", hardware, 21, 187 },
        { "below the offset", hardware, 5, 0 },
        { "a key not in the table", hardware, 9, 0 },
        { "no modifier", state, 0, 0 },
        { "Ctrl is the command flag", state, GDK_CONTROL_MASK, KeyModifier::command },
        { "Alt is the option flag", state, GDK_ALT_MASK, KeyModifier::option },
        { "Shift", state, GDK_SHIFT_MASK, KeyModifier::shift },
        { "all three", state, GDK_CONTROL_MASK | GDK_SHIFT_MASK | GDK_ALT_MASK,
            KeyModifier::command | KeyModifier::shift | KeyModifier::option },
        { "buttons and locks are not keys", state, GDK_BUTTON1_MASK | GDK_LOCK_MASK, 0 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.convert(row.input), row.expected);
    }
}

} // namespace velder::test
