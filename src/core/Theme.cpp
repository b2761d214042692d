#include "core/Theme.h"

#include "core/Palette.h"
#include "core/Vault.h"

#include <algorithm>
#include <cmath>

namespace velder::Theme {

namespace {

double linear(double component)
{
    return component <= 0.03928 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

} // namespace

double luminance(Color color)
{
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

double contrastRatio(Color a, Color b)
{
    double first = luminance(a);
    double second = luminance(b);
    return (std::max(first, second) + 0.05) / (std::min(first, second) + 0.05);
}

Color blackOrWhiteOn(Color color)
{
    double brightness = (0.299 * color.red + 0.587 * color.green + 0.114 * color.blue) * 255;
    return brightness > 150 ? Color { 0, 0, 0, 1 } : Color { 1, 1, 1, 1 };
}

Color readable(Color color, Color background)
{
    return contrastRatio(color, background) >= 3.0 ? color : blackOrWhiteOn(background);
}

Color lift(Color color, double amount)
{
    auto up = [amount](double c) { return c + (1 - c) * amount; };
    return { up(color.red), up(color.green), up(color.blue), 1 };
}

Color shade(Color color, double amount)
{
    if (luminance(color) > 0.5) {
        return { (1 - amount) * color.red, (1 - amount) * color.green, (1 - amount) * color.blue, color.alpha };
    }
    return lift(color, amount);
}

Color onField()
{
    auto snapshot = Vault::shared().snapshot();
    return readable(Palette::textColor(snapshot->settings), Palette::fieldColor(snapshot->settings));
}

} // namespace velder::Theme
