#include "core/Palette.h"

#include "core/Vault.h"

#include <algorithm>

namespace velder::Palette {

namespace {

std::vector<Swatch> makeInk()
{
    return {
        { "black", "Black", Color::fromHex(0x000000) },
        { "charcoal", "Charcoal", Color::fromHex(0x404040) },
        { "grey", "Grey", Color::fromHex(0x808080) },
        { "silver", "Silver", Color::fromHex(0xC0C0C0) },
        { "white", "White", Color::fromHex(0xFFFFFF) },
        { "red", "Red", Color::fromHex(0xE05252) },
        { "orange", "Orange", Color::fromHex(0xE08A30) },
        { "yellow", "Yellow", Color::fromHex(0xD8C840) },
        { "green", "Green", Color::fromHex(0x52C46E) },
        { "cyan", "Cyan", Color::fromHex(0xC0FFFF) },
        { "blue", "Blue", Color::fromHex(0x5A9BEA) },
        { "magenta", "Magenta", Color::fromHex(0xC000C0) },
        { "pink", "Light Pink", Color::fromHex(0xFFB6C1) },
        { "lavender", "Lavender", Color::fromHex(0xC9A9E9) },
    };
}

// What a colour setting falls back to when neither its key nor its fallback key is in the list.
constexpr Color plainGrey { 0.5, 0.5, 0.5, 1 };

} // namespace

const std::vector<Swatch>& ink()
{
    static const std::vector<Swatch> list = makeInk();
    return list;
}

const std::vector<Swatch>& surface()
{
    static const std::vector<Swatch> list = [] {
        std::vector<Swatch> swatches = makeInk();
        swatches.insert(swatches.begin() + 1, Swatch { "gunmetal", "Gunmetal", Color::fromHex(0x282828) });
        return swatches;
    }();
    return list;
}

Color color(std::string_view key, const std::vector<Swatch>& list, std::string_view fallbackKey)
{
    for (std::string_view wanted : { key, fallbackKey }) {
        auto found = std::find_if(list.begin(), list.end(), [&](const Swatch& swatch) { return swatch.key == wanted; });
        if (found != list.end()) {
            return found->color;
        }
    }
    return plainGrey;
}

bool contains(std::string_view key, const std::vector<Swatch>& list)
{
    return std::any_of(list.begin(), list.end(), [&](const Swatch& swatch) { return swatch.key == key; });
}

Color textColor(const AppSettings& settings)
{
    return color(settings.textColor, ink(), "cyan");
}

Color highlightColor(const AppSettings& settings)
{
    return color(settings.highlightColor, ink(), "magenta");
}

Color passiveColor(const AppSettings& settings)
{
    return color(settings.passiveColor, ink(), "grey");
}

Color fieldColor(const AppSettings& settings)
{
    return color(settings.fieldColor, surface(), "charcoal");
}

Color borderColor(const AppSettings& settings)
{
    return color(settings.borderColor, surface(), "gunmetal");
}

Color textColor()
{
    return textColor(Vault::shared().snapshot()->settings);
}

Color highlightColor()
{
    return highlightColor(Vault::shared().snapshot()->settings);
}

Color passiveColor()
{
    return passiveColor(Vault::shared().snapshot()->settings);
}

Color fieldColor()
{
    return fieldColor(Vault::shared().snapshot()->settings);
}

Color borderColor()
{
    return borderColor(Vault::shared().snapshot()->settings);
}

} // namespace velder::Palette
