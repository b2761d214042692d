#include "core/Palette.h"
#include "core/PageShell.h"
#include "core/Theme.h"
#include "support/ScopedStores.h"

#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;

namespace {

std::string hexOf(const Swatch& swatch)
{
    return swatch.key + "=" + PageShell::hex(swatch.color) + "/" + swatch.label;
}

} // namespace

TEST(Palette, SwatchListsInOrder)
{
    std::vector<std::string> ink;
    for (const auto& swatch : Palette::ink()) {
        ink.push_back(hexOf(swatch));
    }
    EXPECT_EQ(ink,
        (std::vector<std::string> { "black=#000000/Black", "charcoal=#404040/Charcoal", "grey=#808080/Grey",
            "silver=#c0c0c0/Silver", "white=#ffffff/White", "red=#e05252/Red", "orange=#e08a30/Orange",
            "yellow=#d8c840/Yellow", "green=#52c46e/Green", "cyan=#c0ffff/Cyan", "blue=#5a9bea/Blue",
            "magenta=#c000c0/Magenta", "pink=#ffb6c1/Light Pink", "lavender=#c9a9e9/Lavender" }));
    ASSERT_EQ(Palette::surface().size(), ink.size() + 1);
    EXPECT_EQ(hexOf(Palette::surface()[1]), "gunmetal=#282828/Gunmetal");
    EXPECT_EQ(hexOf(Palette::surface()[0]), ink[0]);
    EXPECT_EQ(hexOf(Palette::surface()[2]), ink[1]);
    EXPECT_FALSE(Palette::contains("gunmetal", Palette::ink()));
    EXPECT_TRUE(Palette::contains("gunmetal", Palette::surface()));
}

TEST(Palette, ColorFallsBackToTheTablesFallbackNotToGrey)
{
    struct Case {
        const char* key;
        const std::vector<Swatch>* list;
        const char* fallback;
        const char* hex;
    };
    for (const Case& c : std::vector<Case> {
             { "red", &Palette::ink(), "cyan", "#e05252" },
             { "nonsense", &Palette::ink(), "cyan", "#c0ffff" },
             { "gunmetal", &Palette::ink(), "cyan", "#c0ffff" },
             { "gunmetal", &Palette::surface(), "charcoal", "#282828" },
             { "Red", &Palette::ink(), "magenta", "#c000c0" },
             { "nonsense", &Palette::ink(), "also-nonsense", "#808080" },
         }) {
        SCOPED_TRACE(std::string(c.key) + " / " + c.fallback);
        EXPECT_EQ(PageShell::hex(Palette::color(c.key, *c.list, c.fallback)), c.hex);
    }
}

TEST(Palette, SettingsColorsReadTheVaultEachTime)
{
    ScopedStores stores;
    EXPECT_EQ(PageShell::hex(Palette::textColor()), "#c0ffff");
    EXPECT_EQ(PageShell::hex(Palette::borderColor()), "#282828");
    stores.setSettings([](AppSettings& s) {
        s.textColor = "gunmetal";
        s.fieldColor = "gunmetal";
        s.highlightColor = "blue";
        s.passiveColor = "white";
        s.borderColor = "nope";
    });
    EXPECT_EQ(PageShell::hex(Palette::textColor()), "#c0ffff");
    EXPECT_EQ(PageShell::hex(Palette::fieldColor()), "#282828");
    EXPECT_EQ(PageShell::hex(Palette::highlightColor()), "#5a9bea");
    EXPECT_EQ(PageShell::hex(Palette::passiveColor()), "#ffffff");
    EXPECT_EQ(PageShell::hex(Palette::borderColor()), "#282828");
}

TEST(Theme, Arithmetic)
{
    EXPECT_NEAR(Theme::luminance(Color::fromHex(0xFFFFFF)), 1.0, 1e-12);
    EXPECT_NEAR(Theme::luminance(Color::fromHex(0x000000)), 0.0, 1e-12);
    // 0x80: 128/255 = 0.50196 -> ((0.50196 + 0.055) / 1.055) ^ 2.4 = 0.21586
    EXPECT_NEAR(Theme::luminance(Color::fromHex(0x808080)), 0.21586, 1e-5);
    // Below the knee a component is divided by 12.92: 10/255 / 12.92.
    EXPECT_NEAR(Theme::luminance(Color::fromHex(0x0A0000)), 0.2126 * (10 / 255.0) / 12.92, 1e-12);
    EXPECT_NEAR(Theme::contrastRatio(Color::fromHex(0xFFFFFF), Color::fromHex(0x000000)), 21.0, 1e-9);
    EXPECT_NEAR(Theme::contrastRatio(Color::fromHex(0x000000), Color::fromHex(0xFFFFFF)), 21.0, 1e-9);

    struct Case {
        unsigned rgb;
        const char* blackOrWhite;
        const char* lift35;
        const char* shade12;
    };
    for (const Case& c : std::vector<Case> {
             // shade: light colours (luminance above 0.5) darken, others lift.
             { 0x000000, "#ffffff", "#595959", "#1f1f1f" },
             { 0xFFFFFF, "#000000", "#ffffff", "#e0e0e0" },
             { 0xC0FFFF, "#000000", "#d6ffff", "#a9e0e0" },
             { 0x404040, "#ffffff", "#838383", "#575757" },
             // 0.299*192 + 0.587*0 + 0.114*192 = 79.3: dark.
             { 0xC000C0, "#ffffff", "#d659d6", "#c81fc8" },
             // Either side of 150 for black or white, and of luminance 0.5 for shade.
             { 0x949494, "#ffffff", "#b9b9b9", "#a1a1a1" },
             { 0x989898, "#000000", "#bcbcbc", "#a4a4a4" },
             { 0xBBBBBB, "#000000", "#d3d3d3", "#c3c3c3" },
             { 0xBCBCBC, "#000000", "#d3d3d3", "#a5a5a5" },
         }) {
        SCOPED_TRACE(c.rgb);
        Color color = Color::fromHex(c.rgb);
        EXPECT_EQ(PageShell::hex(Theme::blackOrWhiteOn(color)), c.blackOrWhite);
        EXPECT_EQ(PageShell::hex(Theme::lift(color, 0.35)), c.lift35);
        EXPECT_EQ(PageShell::hex(Theme::shade(color, 0.12)), c.shade12);
    }
    EXPECT_EQ(Theme::lift(Color::fromHex(0x102030).withAlpha(0.2), 0.5).alpha, 1);
}

TEST(Theme, ContrastRule)
{
    struct Case {
        const char* text;
        const char* field;
        const char* onField;
    };
    ScopedStores stores;
    for (const Case& c : std::vector<Case> {
             { "cyan", "charcoal", "#c0ffff" }, { "cyan", "white", "#000000" }, { "black", "gunmetal", "#ffffff" },
             { "white", "black", "#ffffff" }, { "grey", "charcoal", "#ffffff" }, // 2.6:1
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
