#pragma once

#include "core/AppSettings.h"
#include "core/Swatch.h"

#include <string_view>
#include <vector>

namespace velder {

// The colours the five colour settings choose from.
namespace Palette {

// Text-like colours: textColor, highlightColor, passiveColor.
const std::vector<Swatch>& ink();
// Surfaces: fieldColor, borderColor. The ink list with "gunmetal" after "black".
const std::vector<Swatch>& surface();

// The first swatch with the key; else the first with the fallback key; else a plain grey.
Color color(std::string_view key, const std::vector<Swatch>& list, std::string_view fallbackKey);
bool contains(std::string_view key, const std::vector<Swatch>& list);

// The five colours of the current settings, each with its fallback ("cyan", "magenta", "grey",
// "charcoal", "gunmetal"). Read from a fresh vault snapshot on each call.
Color textColor();
Color highlightColor();
Color passiveColor();
Color fieldColor();
Color borderColor();

// The same from settings already read, for a caller that needs several colours of one snapshot.
Color textColor(const AppSettings& settings);
Color highlightColor(const AppSettings& settings);
Color passiveColor(const AppSettings& settings);
Color fieldColor(const AppSettings& settings);
Color borderColor(const AppSettings& settings);

} // namespace Palette

} // namespace velder
