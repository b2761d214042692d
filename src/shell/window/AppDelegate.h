#pragma once

#include "core/BrowserAction.h"

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
    // first windows, the periodic session capture.
    void applicationDidFinishLaunching(const std::vector<std::string>& arguments);
    // The quit order: the last session capture, every window's browsers asked to close, then the vault and
    // the history written before the process goes.
    void applicationWillTerminate();

    MainWindow& openWindow(const std::string& url, const MainWindow* cascadingFrom);
    MainWindow& openPrivateWindow(const MainWindow* cascadingFrom);
    void rememberClosedTab(const std::string& url);
    void reopenClosedTab(MainWindow* in);
    void setZoom(double level, const MainWindow* from);

    // A command that works with no browser window open.
    void performBrowserAction(BrowserAction action);
    bool isActionEnabledWithoutWindow(BrowserAction action) const;

    // A URL handed over by a second launch: a new tab of the front window, or a new window.
    void openURLFromOutside(const std::string& url);
    // The desktop asked for a window while Velder runs (a launch without a URL, the launcher's actions).
    void reopenWindow(bool isPrivate);

    // The start-up URL of a command line: the first argument after the program's name that doesn't
    // begin with "-", through UrlHelper::startupTarget.
    static std::optional<std::string> startupURL(const std::vector<std::string>& arguments);

    // The key window if it is a browser window.
    static MainWindow* keyWindow();

private:
    void openFirstWindows(const std::vector<std::string>& arguments);

    std::deque<std::string> m_closedTabs;
};

} // namespace velder
