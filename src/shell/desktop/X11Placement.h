#pragma once

#include "core/WindowPlacement.h"

#include <optional>
#include <utility>
#include <vector>

typedef struct _GtkWindow GtkWindow;

namespace velder {

// Window positions where the display server has them. On X11 (and Xvfb) windows are placed and read through
// their X window; Wayland gives clients no positions, so there the compositor places windows and positions
// are neither read nor restored.
namespace X11Placement {

bool isAvailable();
// The window's top-left corner on the screen, or nothing.
std::optional<std::pair<int, int>> position(GtkWindow* window);
// Moves the window there as soon as it has an X window (at once if it has one).
void placeWhenRealized(GtkWindow* window, int x, int y);
// Each monitor's usable area (without panels where the desktop says so), the primary first. Elsewhere
// (Wayland) no work areas are told: the monitors' whole areas, against which a saved size is judged.
std::vector<Rect> visibleFrames();

} // namespace X11Placement

} // namespace velder
