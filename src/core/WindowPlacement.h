#pragma once

#include <optional>
#include <vector>

namespace velder {

struct WindowSession;

// A window frame in desktop coordinates: the top-left corner and the size, y growing downward (X11).
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    double maxX() const { return x + width; }
    double maxY() const { return y + height; }
    bool operator==(const Rect&) const = default;
};

// Where windows go: pure functions over the screens' usable areas (work areas without panels), the first
// being the main screen's.
namespace WindowPlacement {

inline constexpr double defaultWidth = 1200;
inline constexpr double defaultHeight = 780;
inline constexpr double cascadeOffset = 24;

// 1200 by 780, centred on the main screen's usable area (or at 0, 0 without a screen).
Rect defaultFrame(const std::vector<Rect>& visibleFrames);

// The saved frame if it is usable: all four values present, at least 400 by 300 (smaller sizes are raised),
// and at least 120 by 40 of it on some screen. Otherwise nothing.
std::optional<Rect> frameFromSession(const WindowSession& session, const std::vector<Rect>& visibleFrames);

// The screen area a window is on: the one holding the window's centre, else the one it overlaps most, else
// the first (the primary); nothing without any.
std::optional<Rect> screenOf(const Rect& window, const std::vector<Rect>& visibleFrames);

// A new window's frame: 24 to the right of and below the source (the source's screen area when it is
// maximised), kept on `screen` with its left and top edges winning when it doesn't fit.
Rect cascade(const Rect& source, bool sourceIsZoomed, const std::optional<Rect>& screen);

} // namespace WindowPlacement

} // namespace velder
