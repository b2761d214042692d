#include "WidgetTestSupport.h"

#include "shell/chrome/LocationPin.h"

namespace velder::test {
namespace {

using LocationPinTest = WidgetTest;

TEST_F(LocationPinTest, IsGreenAndHaloedWhenLitAndSaysWhy)
{
    const Color black = Color::fromHex(0x000000);
    struct Row {
        bool lit;
        Color symbol;
        Color halo;
        const char* tooltip;
    };
    // The halo is the lit colour at 0.22 over black: (13, 46, 20).
    const Row rows[] = { { true, Color::fromHex(0x3CD05C), rgb(13, 46, 20), "This site can see your location" },
        { false, Color::fromHex(0x6A6A6A), black, "This site cannot see your location" } };
    LocationPin pin;
    EXPECT_FALSE(gtk_widget_get_focusable(pin.widget()));
    int presses = 0;
    pin.onPress = [&] { ++presses; };
    pin.setShown(true);
    host(pin.widget(), 22, 22);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.lit ? "lit" : "dark");
        pin.setLit(row.lit);
        EXPECT_STREQ(gtk_widget_get_tooltip_text(pin.widget()), row.tooltip);
        Rendering image = render(pin.widget(), black);
        // The 11-point symbol is 14 pixels square from (4, 4); the halo grows it by 4 on every side.
        EXPECT_TRUE(pixelIs(image.farthestFrom(row.halo, 4, 4, 14, 14), row.symbol, 3));
        EXPECT_TRUE(pixelIs(image.at(2, 11), row.halo));
        EXPECT_TRUE(pixelIs(image.at(0, 0), black)) << "the halo is round";
    }
    pin.press();
    EXPECT_EQ(presses, 1);
}

} // namespace
} // namespace velder::test
