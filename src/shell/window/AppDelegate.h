#pragma once

#include "core/BrowserAction.h"
#include "core/LaunchRequest.h"

#include <deque>
#include <optional>
#include <string>
#include <vector>

namespace velder {

class MainWindow;

// What lives as long as the process around the windows: the first windows, the one zoom level of every
// view, the memory of closed tabs, and the orders of launch and quit. Main thread only.
class AppDelegate {
public:
    static constexpr std::size_t closedTabsLimit = 24;

    AppDelegate();
    ~AppDelegate();
    // The one delegate, or null (before the start and after the end).
    static AppDelegate* shared();

    // The zoom level of every ordinary view; new tabs take it when installed.
    static double zoomLevel;

    // Most recently closed first; in memory only.
    const std::deque<std::string>& closedTabs() const { return m_closedTabs; }

    // The launch order's part that opens windows: the zoom from the vault, the location switch watch, the
    // update controller (which first judges the last self-update), the first windows (what the command line
    // asked for, else the saved session), the periodic session capture.
    void applicationDidFinishLaunching(const LaunchRequest& request);
    // The quit order: the last session capture, every window's browsers asked to close, then the vault and
    // the history written before the process goes.
    void applicationWillTerminate();

    MainWindow& openWindow(const std::string& url, const MainWindow* cascadingFrom);
    MainWindow& openPrivateWindow(const MainWindow* cascadingFrom);
    // A window with a tab for each address (at least one), the first active.
    MainWindow& openWindowWith(const std::vector<std::string>& urls, bool isPrivate, const MainWindow* cascadingFrom);
    void rememberClosedTab(const std::string& url);
    void reopenClosedTab(MainWindow* in);
    void setZoom(double level, const MainWindow* from);

    // A command that works with no browser window open.
    void performBrowserAction(BrowserAction action);
    bool isActionEnabledWithoutWindow(BrowserAction action) const;

    // What a second launch handed over: its addresses as new tabs of the front ordinary window (the first
    // of them active), or a new window (--new-window) or private window (--private-window) of them; without
    // addresses such a window opens at the new-tab page, and a plain launch brings Velder to the front.
    void openFromOutside(const LaunchRequest& request);
    // The desktop asked for a window while Velder runs (a launch without a URL, the launcher's actions).
    void reopenWindow(bool isPrivate);

    // The key window if it is a browser window.
    static MainWindow* keyWindow();

private:
    void openFirstWindows(const LaunchRequest& request);

    std::deque<std::string> m_closedTabs;
};

} // namespace velder
