// The location prompt and the pin in windows: which request the strip shows, where a pick goes, and what
// the global switch does from the pin and from the settings.

#include "ShellTest.h"
#include "WidgetTestSupport.h"

#include "shell/chrome/AddressBar.h"
#include "shell/chrome/LocationPin.h"
#include "shell/overlays/LocationPrompt.h"
#include "shell/tab/BrowserTab.h"
#include "shell/window/MainWindow.h"
#include "shell/window/WindowChrome.h"

using namespace velder;
using namespace velder::test;

namespace {

class LocationPromptTest : public ShellTest {
protected:
    LocationPromptTest()
    {
        stores.setSettings([](AppSettings& settings) { settings.locationEnabled = true; });
    }

    static std::shared_ptr<FakePermissionRequest> ask(BrowserTab& tab, const std::string& origin)
    {
        auto request = std::make_shared<FakePermissionRequest>(origin);
        EXPECT_TRUE(tab.handleLocationRequest(request));
        return request;
    }

    static LocationPrompt& strip(MainWindow& window) { return window.chrome().locationBar(); }
    static std::string text(MainWindow& window) { return gtk_label_get_text(GTK_LABEL(strip(window).label())); }
};

using LocationPromptLayoutTest = WidgetTest;

} // namespace

// A request parked in a background tab shows nothing until its tab comes forward, and stays parked when it
// goes back; another window has a strip of its own; a button answers the active tab's request.
TEST_F(LocationPromptTest, TheStripShowsTheActiveTabsParkedRequestOnly)
{
    auto first = windowWith({ "https://a.example/", "https://b.example/maps" });
    auto second = windowWith({ "https://c.example/" });
    first->selectTab(0);
    auto background = ask(*first->tabs()[1], "https://b.example");
    EXPECT_FALSE(strip(*first).isShowing());

    first->selectTab(1);
    EXPECT_TRUE(strip(*first).isShowing());
    EXPECT_EQ(text(*first), "https://b.example wants to know your location");
    EXPECT_FALSE(strip(*second).isShowing());

    first->selectTab(0);
    EXPECT_FALSE(strip(*first).isShowing());
    EXPECT_EQ(text(*first), "");
    EXPECT_EQ(first->tabs()[1]->pendingLocationRequest, background);

    auto other = ask(*second->activeTab(), "https://c.example");
    EXPECT_TRUE(strip(*second).isShowing());
    EXPECT_FALSE(strip(*first).isShowing());
    strip(*second).allowOnceButton().activate();
    EXPECT_EQ(other->answer, true);
    EXPECT_FALSE(strip(*second).isShowing());
    EXPECT_TRUE(second->addressBar().pin().isLit());
}

// The switch turned off in the settings only hides the strip, and the request waits; turned off from the
// pin, it first refuses every parked request of every window.
TEST_F(LocationPromptTest, TheSwitchFromTheSettingsHidesAndFromThePinRefuses)
{
    auto first = windowWith({ "https://a.example/" });
    auto second = windowWith({ "https://b.example/" });
    auto inFirst = ask(*first->activeTab(), "https://a.example");
    auto inSecond = ask(*second->activeTab(), "https://b.example");
    ASSERT_TRUE(strip(*first).isShowing());

    stores.setSettings([](AppSettings& settings) { settings.locationEnabled = false; });
    ASSERT_TRUE(runMainLoopUntil([&] { return !strip(*first).isShowing() && !strip(*second).isShowing(); }));
    EXPECT_FALSE(inFirst->isAnswered());
    EXPECT_FALSE(first->addressBar().pin().isShown());
    stores.setSettings([](AppSettings& settings) { settings.locationEnabled = true; });
    ASSERT_TRUE(runMainLoopUntil([&] { return strip(*first).isShowing(); }));
    EXPECT_TRUE(first->addressBar().pin().isShown());

    first->addressBar().pin().buildMenu(); // as a press on the pin does
    g_action_group_activate_action(first->addressBar().pin().actions(), "services", nullptr);
    EXPECT_EQ(inFirst->answer, false);
    EXPECT_EQ(inSecond->answer, false);
    EXPECT_FALSE(second->activeTab()->pendingLocationRequest);
    EXPECT_FALSE(stores.vault().snapshot()->settings.locationEnabled);
    ASSERT_TRUE(runMainLoopUntil([&] { return !strip(*second).isShowing(); }));
}

// The pin: none on an internal page; a pick from its menu answers the parked request and is stored. (A private
// tab's pin lit by its own answer is the tab's test; that the menu checks only stored answers, the pin's.)
TEST_F(LocationPromptTest, ThePinFollowsThePageAndItsMenuAnswers)
{
    auto window = windowWith({ "velder://settings/", "https://a.example/" });
    window->selectTab(0);
    EXPECT_FALSE(window->addressBar().pin().isShown());
    window->selectTab(1);
    LocationPin& pin = window->addressBar().pin();
    EXPECT_TRUE(pin.isShown());
    EXPECT_FALSE(pin.isLit());
    auto request = ask(*window->activeTab(), "https://a.example");
    pin.buildMenu();
    g_action_group_activate_action(pin.actions(), "alwaysAllow", nullptr);
    EXPECT_EQ(request->answer, true);
    EXPECT_EQ(stores.vault().snapshot()->locationSites.at("https://a.example"), true);
    EXPECT_TRUE(pin.isLit());
    EXPECT_FALSE(strip(*window).isShowing());
}

// The strip's layout: the buttons from the right edge in the order Never, Always allow, Allow once, and a
// label that shrinks to nothing, never below, in a narrow window.
TEST_F(LocationPromptLayoutTest, TheButtonsStandFromTheRightAndTheLabelNeverGoesNegative)
{
    LocationPrompt prompt;
    prompt.show("https://a.example");
    host(prompt.widget(), 600, LocationPrompt::height);
    auto bounds = [&](GtkWidget* widget) {
        graphene_rect_t rect;
        EXPECT_TRUE(gtk_widget_compute_bounds(widget, prompt.widget(), &rect));
        return rect;
    };
    graphene_rect_t never = bounds(prompt.neverButton().widget());
    graphene_rect_t always = bounds(prompt.alwaysAllowButton().widget());
    graphene_rect_t once = bounds(prompt.allowOnceButton().widget());
    EXPECT_EQ(never.origin.x + never.size.width, 588);
    EXPECT_EQ(always.origin.x + always.size.width, never.origin.x - 4);
    EXPECT_EQ(once.origin.x + once.size.width, always.origin.x - 4);
    EXPECT_EQ(never.size.height, 24);
    EXPECT_EQ(bounds(prompt.label()).origin.x, 36);
    EXPECT_EQ(bounds(prompt.label()).size.width, once.origin.x - 4 - 8 - 36);

    prompt.allocate(150, LocationPrompt::height); // a narrow window's layout pass
    EXPECT_EQ(gtk_widget_get_width(prompt.label()), 0);
}
