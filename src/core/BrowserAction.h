#pragma once

namespace velder {

// The name of every browser command. Commands run in MainWindow::perform, or with no window in
// AppDelegate::performBrowserAction.
struct BrowserAction {
    enum class Kind {
        selectTab, // carries `tab`, 1-based
        newTab,
        closeTab,
        closeWindow,
        reopenClosedTab,
        nextTab,
        prevTab,
        selectLastTab,
        newWindow,
        newPrivateWindow,
        focusAddressBar,
        find,
        findNext,
        findPrev,
        reload,
        hardReload,
        stop,
        back,
        forward,
        home,
        zoomIn,
        zoomOut,
        zoomReset,
        devTools,
        history,
        settings,
    };

    Kind kind;
    int tab = 0; // selectTab only

    constexpr BrowserAction(Kind k)
        : kind(k)
    {
    }
    static constexpr BrowserAction selectTab(int n)
    {
        BrowserAction action(Kind::selectTab);
        action.tab = n;
        return action;
    }

    bool operator==(const BrowserAction&) const = default;
};

} // namespace velder
