// The window's tab model and commands, over fake browser views.

#include "ShellTest.h"

#include "core/InternalRoute.h"
#include "shell/tab/BrowserTab.h"
#include "shell/window/MainWindow.h"

using namespace velder;
using namespace velder::test;

namespace {

class MainWindowTest : public ShellTest {
protected:
    static std::vector<std::string> urlsOf(const MainWindow& window)
    {
        std::vector<std::string> urls;
        for (const auto& tab : window.tabs()) {
            urls.push_back(tab->url);
        }
        return urls;
    }
};

} // namespace

// Closing the active tab hands on to the tab now at its place (the tab order's own test has every case). A
// page that refuses to unload keeps its tab.
TEST_F(MainWindowTest, ClosingTheActiveTabSelectsTheTabAtItsPlace)
{
    auto four = windowWith({ "https://a.example/", "https://b.example/", "https://c.example/", "https://d.example/" });
    four->selectTab(2);
    four->closeTab(2);
    ASSERT_TRUE(runMainLoopUntil([&] { return four->tabs().size() == 3; }));
    EXPECT_EQ(
        urlsOf(*four), (std::vector<std::string> { "https://a.example/", "https://b.example/", "https://d.example/" }));
    EXPECT_EQ(four->activeTab()->url, "https://d.example/");
    EXPECT_EQ(delegate->closedTabs().front(), "https://c.example/");
    auto window = windowWith({ "https://a.example/", "https://b.example/" });
    fakeViewOf(*window->tabs()[1])->refusesToUnload = true;
    window->closeTab(1);
    runMainLoopFor(std::chrono::milliseconds(50));
    EXPECT_EQ(window->tabs().size(), 2u);
    EXPECT_TRUE(window->tabs()[1]->view()->hasBrowser());
}

TEST_F(MainWindowTest, ClosingTheOnlyTabClosesTheWindowAndForgetsNothingToReopen)
{
    auto window = windowWith({ "https://only.example/" });
    std::weak_ptr<MainWindow> weak = window;
    window->closeTab(0);
    window.reset();
    ASSERT_TRUE(runMainLoopUntil([&] { return weak.expired(); }));
    EXPECT_TRUE(WindowRegistry::shared().windows.empty());
    EXPECT_TRUE(delegate->closedTabs().empty());

    // Tabs that never got a browser don't hold the window up.
    auto other = MainWindow::create(WindowFrame::defaultFrame(), false, false);
    WindowRegistry::shared().windows.push_back(other);
    other->install(BrowserTab::create("https://x.example/", false), true);
    other->install(BrowserTab::create("https://y.example/", false), true);
    weak = other;
    other->performClose();
    other.reset();
    EXPECT_TRUE(weak.expired());
}

TEST_F(MainWindowTest, TabCommandsWrapAndIgnorePositionsPastTheEnd)
{
    auto window = windowWith({ "https://a.example/", "https://b.example/", "https://c.example/" });
    window->selectTab(2);
    window->perform(BrowserAction::Kind::nextTab);
    EXPECT_EQ(window->activeIndex(), 0u);
    window->perform(BrowserAction::Kind::prevTab);
    EXPECT_EQ(window->activeIndex(), 2u);
    window->perform(BrowserAction::selectTab(1));
    EXPECT_EQ(window->activeIndex(), 0u);
    window->perform(BrowserAction::selectTab(7));
    EXPECT_EQ(window->activeIndex(), 0u);
    window->perform(BrowserAction::Kind::selectLastTab);
    EXPECT_EQ(window->activeIndex(), 2u);
}

TEST_F(MainWindowTest, CloseOthersAndToTheRight)
{
    auto window
        = windowWith({ "https://a.example/", "https://b.example/", "https://c.example/", "https://d.example/" });
    g_action_group_activate_action(window->actions(), "tabCloseToRight", g_variant_new_uint32(1));
    ASSERT_TRUE(runMainLoopUntil([&] { return window->tabs().size() == 2; }));
    EXPECT_EQ(urlsOf(*window), (std::vector<std::string> { "https://a.example/", "https://b.example/" }));
    g_action_group_activate_action(window->actions(), "tabCloseOthers", g_variant_new_uint32(1));
    ASSERT_TRUE(runMainLoopUntil([&] { return window->tabs().size() == 1; }));
    EXPECT_EQ(window->tabs()[0]->url, "https://b.example/");
    g_action_group_activate_action(
        window->actions(), "tabCloseOthers", g_variant_new_uint32(5)); // past the end: nothing
    EXPECT_EQ(window->tabs().size(), 1u);
}

TEST_F(MainWindowTest, PrivateWindowsLeaveNoTrace)
{
    auto window = windowWith({ "about:blank" }, true);

    // Internal pages open in an ordinary window: a new one while there is none, else the first one, where an open
    // settings tab is shown again.
    window->perform(BrowserAction::Kind::settings);
    ASSERT_EQ(WindowRegistry::shared().windows.size(), 2u);
    auto ordinary = WindowRegistry::shared().windows.back();
    EXPECT_FALSE(ordinary->isPrivate());
    window->perform(BrowserAction::Kind::history);
    EXPECT_EQ(urlsOf(*ordinary), (std::vector<std::string> { "velder://settings/", "velder://history/" }));
    EXPECT_FALSE(ordinary->activeTab()->isPrivate());
    window->perform(BrowserAction::Kind::settings);
    EXPECT_EQ(ordinary->tabs().size(), 2u);
    EXPECT_EQ(ordinary->activeIndex(), 0u);
    EXPECT_EQ(window->tabs().size(), 1u);

    // A private window's zoom holds for every view, new tabs too, but isn't stored (an ordinary window's is).
    ordinary->perform(BrowserAction::Kind::zoomIn);
    window->perform(BrowserAction::Kind::zoomOut);
    window->perform(BrowserAction::Kind::zoomOut);
    window->perform(BrowserAction::Kind::zoomOut);
    EXPECT_EQ(ordinary->tabs()[0]->view()->zoomLevel(), -2);
    Vault::shared().flushNow();
    EXPECT_EQ(Vault::shared().snapshot()->currentZoomLevel, 1);

    // Closed private tabs aren't remembered, and new tabs stay private and blank.
    window->perform(BrowserAction::Kind::newTab);
    EXPECT_EQ(window->activeTab()->view()->zoomLevel(), -2);
    EXPECT_TRUE(window->activeTab()->isPrivate());
    EXPECT_EQ(window->activeTab()->url, "about:blank");
    window->closeTab(0);
    ASSERT_TRUE(runMainLoopUntil([&] { return window->tabs().size() == 1; }));
    EXPECT_TRUE(delegate->closedTabs().empty());
}

TEST_F(MainWindowTest, ReopeningClosedTabsNeverLandsInAPrivateWindow)
{
    auto ordinary = windowWith({ "https://a.example/", "https://b.example/" });
    ordinary->closeTab(1);
    ASSERT_TRUE(runMainLoopUntil([&] { return ordinary->tabs().size() == 1; }));
    auto window = windowWith({ "about:blank" }, true);
    window->perform(BrowserAction::Kind::reopenClosedTab);
    EXPECT_EQ(window->tabs().size(), 1u);
    ASSERT_EQ(ordinary->tabs().size(), 2u);
    EXPECT_EQ(ordinary->activeTab()->url, "https://b.example/");
    EXPECT_FALSE(ordinary->activeTab()->isPrivate());
}

TEST_F(MainWindowTest, ClosedTabsAreRememberedUpToTwentyFour)
{
    for (int i = 0; i < 25; ++i) {
        delegate->rememberClosedTab("https://site" + std::to_string(i) + ".example/");
    }
    EXPECT_EQ(delegate->closedTabs().size(), 24u);
    EXPECT_EQ(delegate->closedTabs().front(), "https://site24.example/");
    EXPECT_EQ(delegate->closedTabs().back(), "https://site1.example/");

    delegate->rememberClosedTab("  ABOUT:BLANK \n");
    delegate->rememberClosedTab("   ");
    EXPECT_EQ(delegate->closedTabs().front(), "https://site24.example/");
    delegate->rememberClosedTab(" https://blanks.example/ ");
    EXPECT_EQ(delegate->closedTabs().front(), " https://blanks.example/ ");
}
