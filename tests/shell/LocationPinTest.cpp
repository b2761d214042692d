#include "WidgetTestSupport.h"

#include "shell/chrome/LocationPin.h"
#include "support/ScopedStores.h"

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
    gtk_widget_set_visible(pin.widget(), true);
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
}

// The menu: the origin as a title, the answers enabled only with an origin and checked from the stored
// answer (never from a one-time one), the switch checked from the settings; its answers reach the pin's owner
// (the switch, picked in a window, is LocationPromptTest's).
TEST_F(LocationPinTest, TheMenuShowsTheStoredAnswerAndReportsPicks)
{
    ScopedStores stores;
    stores.setSettings([](AppSettings& settings) { settings.locationEnabled = true; });
    stores.vault().update([](VaultData& data) {
        data.locationSites["https://allowed.example"] = true;
        data.locationSites["https://blocked.example"] = false;
    });
    LocationPin pin;
    std::optional<std::string> origin;
    pin.currentOrigin = [&] { return origin; };
    std::vector<LocationChoice> picks;
    pin.onChoice = [&](LocationChoice choice) { picks.push_back(choice); };

    struct Row {
        std::optional<std::string> origin;
        bool alwaysChecked;
        bool neverChecked;
    };
    const Row rows[] = { { "https://allowed.example", true, false }, { "https://blocked.example", false, true },
        { "https://asked.example", false, false }, { std::nullopt, false, false } };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.origin.value_or("no origin"));
        origin = row.origin;
        pin.refreshVisibility();
        EXPECT_EQ(pin.isShown(), row.origin.has_value());
        GObjectPtr<GMenuModel> menu = pin.buildMenu();
        std::vector<MenuItem> items = itemsOf(menu.get());
        EXPECT_EQ(items.front().label, row.origin.value_or("Allow once"));
        EXPECT_EQ(items[items.size() - 2].label, "Location services") << "the explanation follows it";
        GActionGroup* actions = pin.actions();
        EXPECT_EQ(g_action_group_get_action_enabled(actions, "never"), row.origin.has_value());
        EXPECT_EQ(actionState(actions, "alwaysAllow"), row.alwaysChecked);
        EXPECT_EQ(actionState(actions, "never"), row.neverChecked);
        EXPECT_TRUE(actionState(actions, "services"));
    }
    origin = "https://asked.example";
    pin.buildMenu();
    GActionGroup* actions = pin.actions();
    g_action_group_activate_action(actions, "never", nullptr);
    g_action_group_activate_action(actions, "allowOnce", nullptr);
    EXPECT_EQ(picks, (std::vector<LocationChoice> { LocationChoice::never, LocationChoice::allowOnce }));

    stores.setSettings([](AppSettings& settings) { settings.locationEnabled = false; });
    pin.refreshVisibility();
    EXPECT_FALSE(pin.isShown()) << "the switch off leaves no pin";
}

} // namespace
} // namespace velder::test
