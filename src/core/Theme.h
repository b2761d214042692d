#pragma once

#include "core/Color.h"

namespace velder {

// The fixed colours of the chrome, the contrast rule and the colour arithmetic.
namespace Theme {

inline constexpr const char* didChangeNotification = "Velder.themeDidChange";

inline constexpr Color fixedBackground = Color::fromHex(0x2B2B2B); // the browser container
inline constexpr Color fixedLine = Color::fromHex(0x4F4F4F); // the toolbar's bottom line
inline constexpr Color pinLit = Color::fromHex(0x3CD05C); // a lit location pin, the update tick
inline constexpr Color pinDark = Color::fromHex(0x6A6A6A);
inline constexpr Color destructive = Color::fromHex(0xD03C3C);

// WCAG relative luminance.
double luminance(Color color);
// (lighter + 0.05) / (darker + 0.05).
double contrastRatio(Color a, Color b);
// Black on light colours, white on dark ones.
Color blackOrWhiteOn(Color color);
// The contrast rule: the colour if its contrast with the background is 3.0 or more, else black or white.
Color readable(Color color, Color background);
// Each component moved towards 1 by `amount`; alpha 1.
Color lift(Color color, double amount);
// Light colours (luminance above 0.5) darkened by `amount`, others lifted.
Color shade(Color color, double amount);
// The text colour with the contrast rule against the field colour.
Color onField();

} // namespace Theme

} // namespace velder
