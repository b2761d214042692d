#pragma once

namespace velder {

// A site's standing answer to location requests. `ask` is never stored: no key in the vault means ask.
enum class LocationAnswer { ask, allow, block };

// What the user picked in the prompt or the pin's menu.
enum class LocationChoice { allowOnce, alwaysAllow, never };

// The engine's content-setting value for an answer: ask 3, allow 1, block 2 (default 0 is never written).
constexpr int engineSetting(LocationAnswer answer)
{
    switch (answer) {
    case LocationAnswer::allow:
        return 1;
    case LocationAnswer::block:
        return 2;
    case LocationAnswer::ask:
        break;
    }
    return 3;
}

} // namespace velder
