#pragma once

#include <string>
#include <string_view>

namespace velder {

// How a saved window was shown. Stored as "normal" or "zoomed" (maximised); any other text reads as normal.
enum class WindowState { normal, zoomed };

inline std::string_view storedName(WindowState state)
{
    return state == WindowState::zoomed ? "zoomed" : "normal";
}

inline WindowState windowStateFromStored(std::string_view text)
{
    return text == "zoomed" ? WindowState::zoomed : WindowState::normal;
}

} // namespace velder
