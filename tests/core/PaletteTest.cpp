#include "core/Palette.h"
#include "core/PageShell.h"
#include "core/Theme.h"
#include "support/ScopedStores.h"

#include "CoreTestSupport.h"

#include <gtest/gtest.h>
#include <set>

using namespace velder;
using namespace velder::test;

namespace {

// Every colour the user can pick, and the greys either side of the black-or-white threshold.
std::vector<Color> colours()
{
    std::vector<Color> result { Color::fromHex(0x949494), Color::fromHex(0x989898) };
    for (const auto& swatch : Palette::surface()) {
        result.push_back(swatch.color);
    }
    return result;
}

} // namespace

// A swatch's key is the value the settings form sends: two swatches of one key couldn't be told apart.
TEST(Palette, KeysAreUniqueAndEverySwatchHasALabel)
{
    for (const auto* list : { &Palette::ink(), &Palette::surface() }) {
        std::set<std::string> keys;
        for (const auto& swatch : *list) {
            EXPECT_TRUE(keys.insert(swatch.key).second) << swatch.key;
            EXPECT_FALSE(swatch.label.empty()) << swatch.key;
        }
    }
}

// Each colour setting shows its swatch, and falls back to its default for a key outside its list.
TEST(Palette, SettingsShowTheirSwatchOrTheirDefault)
{
    for (const ColourSetting& setting : colourSettings()) {
        SCOPED_TRACE(setting.field);
        const Color fallback = setting.colour(AppSettings());
        EXPECT_TRUE(Palette::contains(AppSettings().*setting.key, setting.list));
        AppSettings settings;
        for (const auto& swatch : Palette::surface()) {
            settings.*setting.key = swatch.key;
            EXPECT_EQ(setting.colour(settings), Palette::contains(swatch.key, setting.list) ? swatch.color : fallback)
                << swatch.key;
        }
        for (const char* outside : { "", "nonsense", "Red" }) {
            settings.*setting.key = outside;
            EXPECT_EQ(setting.colour(settings), fallback) << outside;
        }
    }
    EXPECT_EQ(Palette::color("nonsense", Palette::ink(), "also-nonsense"), (Color { 0.5, 0.5, 0.5, 1 }));

    ScopedStores stores;
    stores.setSettings([](AppSettings& s) { s.borderColor = "red"; });
    EXPECT_EQ(Palette::borderColor(), Color::fromHex(0xE05252)) << "read from the vault on each call";
}

TEST(Theme, ContrastAndShadingKeepTheirPromises)
{
    const Color black { 0, 0, 0, 1 }, white { 1, 1, 1, 1 };
    EXPECT_NEAR(Theme::contrastRatio(white, black), 21.0, 1e-9);
    // 0x80: ((128/255 + 0.055) / 1.055) ^ 2.4; below the knee a component is divided by 12.92.
    EXPECT_NEAR(Theme::luminance(Color::fromHex(0x808080)), 0.21586, 1e-5);
    EXPECT_NEAR(Theme::luminance(Color::fromHex(0x0A0000)), 0.2126 * (10 / 255.0) / 12.92, 1e-12);
    for (const Color& a : colours()) {
        SCOPED_TRACE(PageShell::hex(a));
        Color blackOrWhite = Theme::blackOrWhiteOn(a);
        EXPECT_TRUE(blackOrWhite == black || blackOrWhite == white);
        EXPECT_EQ(Theme::lift(a, 0), a);
        EXPECT_EQ(Theme::lift(a, 1), white);
        EXPECT_EQ(Theme::lift(a.withAlpha(0.2), 0.5).alpha, 1);
        double lum = Theme::luminance(a);
        EXPECT_GE(Theme::luminance(Theme::lift(a, 0.35)), lum);
        // Light colours are shaded darker, the others lighter.
        EXPECT_EQ(Theme::luminance(Theme::shade(a, 0.12)) < lum, lum > 0.5);
        for (const Color& b : colours()) {
            double ratio = Theme::contrastRatio(a, b);
            EXPECT_DOUBLE_EQ(ratio, Theme::contrastRatio(b, a));
            EXPECT_GE(ratio, 1.0);
            EXPECT_EQ(Theme::readable(a, b), ratio >= 3.0 ? a : Theme::blackOrWhiteOn(b));
        }
    }
    // Black or white by perceived brightness either side of 150: 0x94 is 148, 0x98 is 152.
    EXPECT_EQ(Theme::blackOrWhiteOn(Color::fromHex(0x949494)), white);
    EXPECT_EQ(Theme::blackOrWhiteOn(Color::fromHex(0x989898)), black);
    EXPECT_EQ(Theme::blackOrWhiteOn(Color::fromHex(0xC000C0)), white) << "magenta is dark by brightness";
}

TEST(Theme, TheTextOnTheFieldFollowsTheContrastRule)
{
    struct Case {
        const char* text;
        const char* field;
        const char* onField;
    };
    ScopedStores stores;
    for (const Case& c : std::vector<Case> {
             { "cyan", "charcoal", "#c0ffff" }, { "cyan", "white", "#000000" },
             { "grey", "charcoal", "#ffffff" }, // 2.6:1
             { "blue", "white", "#000000" }, // 2.9:1
             { "blue", "black", "#5a9bea" }, // 7.3:1
         }) {
        SCOPED_TRACE(std::string(c.text) + " on " + c.field);
        stores.setSettings([&](AppSettings& s) {
            s.textColor = c.text;
            s.fieldColor = c.field;
        });
        EXPECT_EQ(PageShell::hex(Theme::onField()), c.onField);
    }
}

TEST(PageShell, HexRoundsEachComponent)
{
    EXPECT_EQ(PageShell::hex({ 0.5, 0.25, 1.0, 1 }), "#8040ff");
    EXPECT_EQ(PageShell::hex({ 0.998, 0.002, 0.0019, 1 }), "#fe0100");
    EXPECT_EQ(PageShell::hex({ -0.5, 1.5, 0.1, 0.3 }), "#00ff1a");
}
