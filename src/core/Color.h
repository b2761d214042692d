#pragma once

namespace velder {

// An sRGB colour with components in 0...1.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    static constexpr Color fromHex(unsigned rgb)
    {
        return { ((rgb >> 16) & 0xff) / 255.0, ((rgb >> 8) & 0xff) / 255.0, (rgb & 0xff) / 255.0, 1 };
    }
    constexpr Color withAlpha(double a) const { return { red, green, blue, a }; }

    bool operator==(const Color&) const = default;
};

} // namespace velder
