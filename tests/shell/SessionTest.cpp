// Capturing windows into the vault and rebuilding them at start.

#include "ShellTest.h"

#include "core/WindowPlacement.h"
#include "shell/desktop/X11Placement.h"
#include "shell/tab/BrowserTab.h"
#include "shell/window/MainWindow.h"

using namespace velder;
using namespace velder::test;

namespace {

class SessionTest : public ShellTest {
protected:
    std::shared_ptr<MainWindow> openWindow(
        Rect frame, const std::vector<std::string>& urls, std::size_t active, bool isPrivate = false)
    {
        auto window = MainWindow::create(frame, isPrivate, true);
        for (const auto& url : urls) {
            window->install(BrowserTab::create(url, isPrivate), false);
        }
        window->selectTab(active);
        WindowRegistry::shared().windows.push_back(window);
        window->makeKeyAndOrderFront();
        return window;
    }
};

} // namespace

// Windows, their tabs and the active one, their frames: captured and rebuilt the same.
TEST_F(SessionTest, CaptureThenRestoreGivesTheSameWindows)
{
    Rect first { 40, 30, 900, 700 };
    Rect second { 300, 200, 1000, 650 };
    auto a = openWindow(first, { "https://a.example/", "velder://history/", "about:blank" }, 1);
    auto b = openWindow(second, { "https://b.example/x?y=1" }, 0);
    openWindow({ 10, 10, 800, 600 }, { "https://private.example/" }, 0, true);
    ASSERT_TRUE(runMainLoopUntil([&] { return a->placement().frame() == first && b->placement().frame() == second; }));

    WindowRegistry::shared().capture();
    auto saved = Vault::shared().snapshot()->windows;
    ASSERT_EQ(saved.size(), 2u) << "private windows are never saved";
    EXPECT_EQ(saved[0],
        (WindowSession {
            { "https://a.example/", "velder://history/", "about:blank" }, 1, 40, 30, 900, 700, WindowState::normal }));

    WindowRegistry::shared().reset();
    a.reset();
    b.reset();
    ASSERT_TRUE(WindowRegistry::shared().restoreSavedSession());
    auto& windows = WindowRegistry::shared().windows;
    ASSERT_EQ(windows.size(), 2u);
    ASSERT_TRUE(runMainLoopUntil(
        [&] { return windows[0]->placement().frame() == first && windows[1]->placement().frame() == second; }));
    for (std::size_t i = 0; i < 2; ++i) {
        SCOPED_TRACE(i);
        WindowSession again = windows[i]->sessionRecord();
        EXPECT_EQ(again, saved[i]);
        EXPECT_TRUE(windows[i]->placement().hasOwnPlacement());
    }
}

TEST_F(SessionTest, CapturesKeepWhatWasSavedWhereTheyKnowNoBetter)
{
    // Only private windows: the saved session stays as it was.
    Vault::shared().update([](VaultData& data) {
        data.windows = { { { "https://kept.example/" }, 0, 5, 6, 700, 500 } };
    });
    openWindow({ 10, 10, 800, 600 }, { "about:blank" }, 0, true);
    WindowRegistry::shared().capture();
    ASSERT_EQ(Vault::shared().snapshot()->windows.size(), 1u);
    EXPECT_EQ(Vault::shared().snapshot()->windows[0].tabs[0], "https://kept.example/");

    // A window without a placement of its own keeps the one saved at its place.
    auto window = MainWindow::create(WindowFrame::defaultFrame(), false, false);
    window->install(BrowserTab::create("https://new.example/", false), true);
    WindowRegistry::shared().windows.push_back(window);
    WindowRegistry::shared().capture();
    auto saved = Vault::shared().snapshot()->windows;
    ASSERT_EQ(saved.size(), 1u);
    EXPECT_EQ(saved[0].tabs, std::vector<std::string> { "https://new.example/" });
    EXPECT_EQ(saved[0].x, 5);
    EXPECT_EQ(saved[0].w, 700);

    // Moved by the user (on X11, where positions are read), it is placed by the user: its frame is saved.
    if (X11Placement::isAvailable()) {
        window->makeKeyAndOrderFront();
        ASSERT_TRUE(runMainLoopUntil([&] { return gtk_widget_get_mapped(GTK_WIDGET(window->window())); }));
        X11Placement::placeWhenRealized(window->window(), 321, 123);
        ASSERT_TRUE(
            runMainLoopUntil([&] { return X11Placement::position(window->window()) == std::make_pair(321, 123); }));
        WindowRegistry::shared().capture();
        saved = Vault::shared().snapshot()->windows;
        EXPECT_EQ(saved[0].x, 321);
        EXPECT_EQ(saved[0].y, 123);
        EXPECT_EQ(saved[0].w, static_cast<std::int64_t>(WindowFrame::defaultFrame().width));
    }

    // After the final capture nothing more is written.
    WindowRegistry::shared().captureFinalAndStop();
    window->install(BrowserTab::create("https://later.example/", false), true);
    WindowRegistry::shared().capture();
    EXPECT_EQ(Vault::shared().snapshot()->windows[0].tabs.size(), 1u);
}

TEST_F(SessionTest, RestoreFollowsTheSettingAndClampsWhatItReads)
{
    Vault::shared().update([](VaultData& data) {
        data.windows = { { {}, 0 }, { { "https://a.example/", "https://b.example/" }, 7, 50, 60, 100, 100 },
            { { "https://c.example/" }, -3 } };
        data.settings.restoreSession = false;
    });
    EXPECT_FALSE(WindowRegistry::shared().restoreSavedSession());
    EXPECT_TRUE(WindowRegistry::shared().windows.empty());

    Vault::shared().update([](VaultData& data) { data.settings.restoreSession = true; });
    ASSERT_TRUE(WindowRegistry::shared().restoreSavedSession());
    auto& windows = WindowRegistry::shared().windows;
    ASSERT_EQ(windows.size(), 2u) << "a record without tabs opens no window";
    EXPECT_EQ(windows[0]->activeIndex(), 1u) << "an index past the end selects the last tab";
    EXPECT_EQ(windows[1]->activeIndex(), 0u);
    // A saved 100 by 100 is raised to 400 by 300, and then to the window's own minimum of 560 by 360.
    EXPECT_EQ(windows[0]->placement().frame(), (Rect { 50, 60, 560, 360 }));
    EXPECT_FALSE(windows[1]->placement().hasOwnPlacement());
}
