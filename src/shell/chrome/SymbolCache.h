#pragma once

#include "core/Color.h"

#include <gtk/gtk.h>
#include <string>

namespace velder {

// The chrome's symbols: symbolic icons of the desktop's icon theme, looked up once per name, size and
// weight and kept for the life of the process, then tinted at each draw.
namespace SymbolCache {

// The icon's side in logical pixels for a symbol of `pointSize`: 13-point symbols land on the icon
// theme's native 16-pixel grid, and the others scale with them.
int pixelSize(double pointSize);

// The size to ask the icon theme for: the smallest of the theme's fixed sizes that holds `pixels`, so that
// the icon comes from a ready bitmap and the drawing scales it down, rather than from the scalable image,
// whose decoder alone costs the program several megabytes.
int lookupSize(int pixels);

// "name|size|weight", with "@scale" added on scaled displays.
std::string key(const std::string& name, double pointSize, int weight, int scale = 1);

// The image for the symbol, or null when the icon theme has no icon of that name (which is not cached).
// Borrowed: the cache keeps it.
GdkPaintable* image(const std::string& name, double pointSize, int weight, int scale = 1);

// How many images the cache holds.
std::size_t count();

// Draws `image` in `color`, `side` pixels square, its top-left corner at (x, y).
void draw(GtkSnapshot* snapshot, GdkPaintable* image, double x, double y, double side, Color color);

} // namespace SymbolCache

} // namespace velder
