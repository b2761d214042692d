// Key values, hardware key codes and modifier states as the toolkit reports them for any key of any layout.
// - a key value maps to 0 or to one of the engine's codes, a letter to its capital in either case;
// - a hardware key code maps to 0 (always below 8) or to a code some key value also maps to;
// - modifiers map bit by bit to the command, option and shift flags, never the unused control flag.

#include "FuzzCheck.h"

#include "bridge/VLDKeyCodes.h"
#include "core/KeyBinding.h"

#include <algorithm>
#include <cstring>
#include <gdk/gdk.h>
#include <set>

using namespace velder;
using fuzz::check;

namespace {

bool isEngineCode(std::int32_t code)
{
    return code == 8 || code == 9 || code == 13 || (code >= 16 && code <= 18) || code == 27
        || (code >= 32 && code <= 40) || code == 45 || code == 46 || (code >= '0' && code <= '9')
        || (code >= 'A' && code <= 'Z') || (code >= 96 && code <= 107) || (code >= 109 && code <= 135)
        || (code >= 186 && code <= 192) || (code >= 219 && code <= 222);
}

// Every code a key value of the Latin, keypad and function ranges gives.
const std::set<std::int32_t>& keyvalCodes()
{
    static const std::set<std::int32_t> codes = [] {
        std::set<std::int32_t> all;
        for (unsigned keyval = 0; keyval <= 0xFFFF; ++keyval) {
            if (auto code = VLDKeyCodes::windowsKeyCodeForKeyval(keyval)) {
                all.insert(code);
            }
        }
        return all;
    }();
    return codes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    unsigned values[4] {};
    std::memcpy(values, data, std::min(size, sizeof values));
    auto [keyval, keycode, state, other] = values;

    std::int32_t code = VLDKeyCodes::windowsKeyCodeForKeyval(keyval);
    check(code == 0 || isEngineCode(code), "a key value maps to an engine code or none");
    if (keyval >= GDK_KEY_a && keyval <= GDK_KEY_z) {
        check(code == static_cast<std::int32_t>(keyval - GDK_KEY_a + 'A')
                && VLDKeyCodes::windowsKeyCodeForKeyval(keyval - GDK_KEY_a + GDK_KEY_A) == code,
            "a letter maps to its capital in either case");
    }

    std::int32_t hardware = VLDKeyCodes::windowsKeyCodeForHardwareKeycode(keycode);
    check(hardware == 0 || keyvalCodes().contains(hardware), "a hardware key maps to a code of some key value");
    check(keycode >= 8 || hardware == 0, "no key below the X11 offset");

    constexpr std::uint32_t known = KeyModifier::command | KeyModifier::option | KeyModifier::shift;
    std::uint32_t modifiers = VLDKeyCodes::modifiersForState(state);
    check((modifiers & ~known) == 0, "only the command, option and shift flags");
    check(VLDKeyCodes::modifiersForState(state | other) == (modifiers | VLDKeyCodes::modifiersForState(other)),
        "modifiers map bit by bit");
    check(VLDKeyCodes::modifiersForState(0) == 0, "no state, no flag");
    return 0;
}
