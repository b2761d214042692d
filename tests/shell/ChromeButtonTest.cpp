#include "WidgetTestSupport.h"

#include "glib/GCharPtr.h"
#include "shell/chrome/ChromeButton.h"
#include "shell/chrome/PopupMenu.h"
#include "shell/chrome/SymbolCache.h"

namespace velder::test {
namespace {

const Color black = Color::fromHex(0x000000);
const Color grey = Color::fromHex(0x808080);
const Color destructive = Color::fromHex(0xD03C3C);

class ChromeButtonTest : public WidgetTest {
protected:
    std::unique_ptr<ChromeButton> makeButton(const std::string& symbol = "go-previous-symbolic")
    {
        auto button = std::make_unique<ChromeButton>(ChromeButton::Content::symbol(symbol), "Back");
        button->ink = [] { return grey; };
        return button;
    }
};

struct StateCase {
    const char* name;
    bool hoverInk;
    bool drawsHoverBackground;
    std::function<void(ChromeButton&)> act;
    Color symbol; // the symbol's colour over black, worked out by hand
    Color background; // the hover background over black
};

TEST_F(ChromeButtonTest, DrawsEachStateInItsColours)
{
    // Grey ink (128): lifted by 0.3 is 166, by 0.5 is 192; at alpha 0.32 over black 41; the hover background
    // is the ink at 0.16 (20) and the pressed one at 0.28 (36).
    const StateCase cases[] = {
        { "plain", false, true, [](ChromeButton&) {}, grey, black },
        { "hovered with a hover ink", true, true, [](ChromeButton& b) { b.pointerEntered(); }, destructive,
            rgb(20, 20, 20) },
        { "hovered without a hover background", false, false, [](ChromeButton& b) { b.pointerEntered(); },
            rgb(166, 166, 166), black },
        { "pressed", false, true, [](ChromeButton& b) { b.press(); }, rgb(192, 192, 192), rgb(36, 36, 36) },
        { "disabled, the pointer resting on it", false, true,
            [](ChromeButton& b) {
                b.setEnabled(false);
                b.pointerEntered();
            },
            rgb(41, 41, 41), black },
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        auto button = makeButton();
        if (row.hoverInk) {
            button->hoverInk = [] { return destructive; };
        }
        button->setDrawsHoverBackground(row.drawsHoverBackground);
        host(button->widget(), 28, 26);
        row.act(*button);
        Rendering image = render(button->widget(), black);
        // The symbol is 16 pixels square, centred: from (6, 5).
        EXPECT_TRUE(pixelIs(image.farthestFrom(row.background, 6, 5, 16, 16), row.symbol, 3));
        // Above the symbol, inside the rounded background (inset 1, radius 5).
        EXPECT_TRUE(pixelIs(image.at(14, 2), row.background));
        // Outside the background: the corner.
        EXPECT_TRUE(pixelIs(image.at(0, 0), black));
    }
}

struct Step {
    enum Kind { press, move, release } kind;
    double x = 0;
    double y = 0;
};

struct ClickCase {
    const char* name;
    bool enabled;
    std::vector<Step> steps;
    int clicks;
    bool pressedAtTheEnd;
};

TEST_F(ChromeButtonTest, ClicksOnlyOnAReleaseInside)
{
    const ClickCase cases[] = {
        { "press and release inside", true, { { Step::press }, { Step::release, 10, 10 } }, 1, false },
        { "release outside", true, { { Step::press }, { Step::move, 40, 10 }, { Step::release, 40, 10 } }, 0, false },
        { "out and back in", true,
            { { Step::press }, { Step::move, -3, 10 }, { Step::move, 12, 12 }, { Step::release, 12, 12 } }, 1, false },
        { "pressed only while inside", true, { { Step::press }, { Step::move, 10, 30 } }, 0, false },
        { "still inside", true, { { Step::press }, { Step::move, 27, 25 } }, 0, true },
        { "disabled", false, { { Step::press }, { Step::release, 10, 10 } }, 0, false },
        { "a release without a press", true, { { Step::release, 10, 10 } }, 0, false },
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        auto button = makeButton();
        int clicks = 0;
        button->onClick = [&] { ++clicks; };
        button->setEnabled(row.enabled);
        host(button->widget(), 28, 26);
        for (const Step& step : row.steps) {
            switch (step.kind) {
            case Step::press:
                button->press();
                break;
            case Step::move:
                button->pointerMoved(step.x, step.y);
                break;
            case Step::release:
                button->release(step.x, step.y);
                break;
            }
        }
        EXPECT_EQ(clicks, row.clicks);
        EXPECT_EQ(button->isPressed(), row.pressedAtTheEnd);
    }
}

TEST_F(ChromeButtonTest, AMenuProviderPopsItsMenuUnderTheButton)
{
    auto button = makeButton();
    int clicks = 0;
    button->onClick = [&] { ++clicks; };
    button->menuProvider = [] {
        auto menu = GObjectPtr<GMenu>::adopt(g_menu_new());
        g_menu_append(menu.get(), "New Window", "win.newWindow");
        return GObjectPtr<GMenuModel>::adopt(G_MENU_MODEL(menu.release()));
    };
    host(button->widget(), 120, 22);
    button->press();
    GtkPopover* menu = PopupMenu::openMenu(button->widget());
    ASSERT_NE(menu, nullptr);
    EXPECT_TRUE(button->isPressed());
    GdkRectangle anchor;
    ASSERT_TRUE(gtk_popover_get_pointing_to(menu, &anchor));
    EXPECT_EQ(anchor.x, 0);
    EXPECT_EQ(anchor.y + anchor.height, 22 + 4);

    button->release(10, 10);
    EXPECT_TRUE(button->isPressed()) << "the press lasts as long as the menu";
    gtk_popover_popdown(menu);
    EXPECT_FALSE(button->isPressed());
    EXPECT_EQ(clicks, 0);
    EXPECT_EQ(PopupMenu::openMenu(button->widget()), nullptr);
    // The window goes on drawing after the menu closed (a menu taken down at once crashed it here).
    runMainLoopFor(std::chrono::milliseconds(600));
    EXPECT_EQ(PopupMenu::openMenu(button->widget()), nullptr);

    button->menuProvider = [] { return GObjectPtr<GMenuModel>(); };
    button->press();
    EXPECT_EQ(PopupMenu::openMenu(button->widget()), nullptr) << "a null menu shows nothing";
    EXPECT_FALSE(button->isPressed());
}

// A button is as wide as its text or its symbol; its label is also its tooltip.
TEST_F(ChromeButtonTest, ContentWidthIsTheTextOrTheSymbol)
{
    ChromeButton narrow(ChromeButton::Content::text("V", 11, PANGO_WEIGHT_SEMIBOLD), "");
    ChromeButton wide(ChromeButton::Content::text("VVVVVVVV", 11, PANGO_WEIGHT_SEMIBOLD), "");
    EXPECT_GT(narrow.contentWidth(), 3);
    EXPECT_NEAR(wide.contentWidth(), 8 * narrow.contentWidth(), 2);
    EXPECT_EQ(gtk_widget_get_tooltip_text(narrow.widget()), nullptr) << "no label, no tooltip";

    auto symbol = makeButton("list-add-symbolic");
    EXPECT_STREQ(gtk_widget_get_tooltip_text(symbol->widget()), "Back");
    EXPECT_EQ(symbol->contentWidth(), 16);
    symbol->setSymbolPointSize(9);
    EXPECT_EQ(symbol->contentWidth(), 11);
    EXPECT_EQ(makeButton("no-such-symbol-anywhere")->contentWidth(), 0);
}

TEST_F(ChromeButtonTest, SymbolCacheKeepsKnownSymbolsByNameSizeWeightAndScale)
{
    std::size_t before = SymbolCache::count();
    EXPECT_EQ(SymbolCache::image("no-such-symbol-anywhere", 13, 500), nullptr);
    EXPECT_EQ(SymbolCache::count(), before) << "an unknown name isn't cached";

    GdkPaintable* first = SymbolCache::image("view-refresh-symbolic", 13, 500);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(SymbolCache::image("view-refresh-symbolic", 13, 500), first);
    std::size_t afterOne = SymbolCache::count();
    EXPECT_NE(SymbolCache::image("view-refresh-symbolic", 10, 500), nullptr);
    EXPECT_NE(SymbolCache::image("view-refresh-symbolic", 13, 600), nullptr);
    EXPECT_NE(SymbolCache::image("view-refresh-symbolic", 13, 500, 2), first);
    EXPECT_EQ(SymbolCache::count(), afterOne + 3) << "each size, weight and scale has an entry of its own";

    // A ready bitmap of the theme, never the scalable image, whose decoder would cost megabytes to load.
    GObjectPtr<GFile> file = GObjectPtr<GFile>::adopt(gtk_icon_paintable_get_file(GTK_ICON_PAINTABLE(first)));
    GCharPtr path(file ? g_file_get_path(file.get()) : nullptr);
    EXPECT_TRUE(g_str_has_suffix(path.get(), ".png")) << toString(path);
}

} // namespace
} // namespace velder::test
