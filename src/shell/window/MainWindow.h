#pragma once

#include "core/BrowserAction.h"
#include "core/InternalRoute.h"
#include "core/NotificationCenter.h"
#include "core/TabModel.h"
#include "core/WindowSession.h"
#include "glib/GObjectPtr.h"
#include "shell/chrome/Themed.h"
#include "shell/tab/TabHost.h"
#include "shell/window/WindowFrame.h"

#include <gtk/gtk.h>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace velder {

class AddressBar;
class AddressEditing;
class BrowserTab;
class FindBar;
class LeaveQuestions;
class TabStrip;
class UrlSuggestions;
class WindowChrome;
class WindowCommands;

// One browser window: it owns its tabs, knows the active one, hosts them, and takes tabs to their end
// through the engine (a tab leaves only when its browser is gone). Its parts: the tab order (TabModel), the
// frame (WindowFrame), the widgets round the page (WindowChrome), the commands (WindowCommands) and
// the address bar at work (AddressEditing).
//
// Main thread only. The window registry keeps windows alive while they are open.
class MainWindow final : public TabHost, public std::enable_shared_from_this<MainWindow> {
public:
    using Tabs = TabModel<std::shared_ptr<BrowserTab>>;

    static std::shared_ptr<MainWindow> create(Rect frame, bool isPrivate, bool hasOwnPlacement);
    // A window rebuilt from a saved record: its frame (or the default one), its tabs, its active tab.
    static std::shared_ptr<MainWindow> create(const WindowSession& session);
    ~MainWindow() override;

    GtkWindow* window() const { return m_window.get(); }
    static MainWindow* fromWindow(GtkWindow* window);
    bool isPrivate() const { return m_isPrivate; }
    bool isClosing() const { return m_isClosing; }

    // The tabs.
    const Tabs& tabModel() const { return m_tabs; }
    const std::vector<std::shared_ptr<BrowserTab>>& tabs() const { return m_tabs.tabs(); }
    std::size_t activeIndex() const { return m_tabs.activeIndex(); }
    std::shared_ptr<BrowserTab> activeTab() const;
    void selectTab(std::size_t index);
    void install(std::shared_ptr<BrowserTab> tab, bool activate);
    void closeTab(std::size_t index);
    void closeTabs(const std::vector<std::shared_ptr<BrowserTab>>& tabs);
    void moveTab(std::size_t from, std::size_t to);
    void requestCloseBrowsers();

    // Commands, run by WindowCommands.
    void perform(BrowserAction action);
    bool isActionEnabled(BrowserAction action) const;
    WindowCommands& commands() const { return *m_commands; }
    void newTab();
    void openInternalPage(InternalRoute route);
    // Loads the URL in the active tab and gives the page the keyboard.
    void navigateActiveTab(const std::string& url);
    void focusForActiveTab();
    // Gives the keyboard to the active tab's page, blank or not.
    void focusPage();
    void refreshChrome();
    WindowSession sessionRecord() const;

    void openFindBar();
    void closeFindBar();
    bool findBarIsShowing() const;
    // Shows the location prompt for the active tab's parked request, or hides it.
    void syncLocationBar();
    // The pin menu's switch: turning it off first refuses every parked request of every window.
    static void setLocationServices(bool enabled);

    // The platform window.
    WindowFrame& placement() { return *m_frame; }
    const WindowFrame& placement() const { return *m_frame; }
    void performClose(); // as the close button: may wait for the pages' unload handlers
    void makeKeyAndOrderFront();
    static Rect frameCascadingFrom(const MainWindow* source);

    // The chrome, for the window's parts, tests and screenshots.
    WindowChrome& chrome() const { return *m_chrome; }
    TabStrip& strip() const;
    AddressBar& addressBar() const;
    UrlSuggestions& suggestions() const;
    FindBar& findBar() const;
    GtkWidget* container() const;
    GtkWidget* pageMenuAnchor() const;
    bool slateIsShowing() const;
    // The window's actions ("win.newTab" ...), which the menus name.
    GActionGroup* actions() const;

    // TabHost
    void tabDidChange(BrowserTab&) override;
    void tabDidFindMatches(BrowserTab&) override;
    void tabLocationRequestDidChange(BrowserTab&) override;
    void tabDidHoverLink(BrowserTab&, const std::string& url) override;
    bool tabDidPressKey(BrowserTab&, BrowserAction) override;
    bool tabWantsContextMenu(BrowserTab&, const VLDContextMenuInfo&) override;
    bool tabOpensInNewTab(BrowserTab&, const std::string& url, bool foreground) override;
    std::shared_ptr<VLDBrowserView> tabWantsPopupHost(BrowserTab&, const std::string& url) override;
    void tabAsksToStay(BrowserTab&, std::function<void(bool leave)> answer) override;
    void tabKeptPage(BrowserTab&) override;
    void tabWillTearDown(BrowserTab&) override;
    void tabBrowserDidClose(BrowserTab&) override;
    LeaveQuestions& leaveQuestions() const { return *m_leaveQuestions; }

private:
    MainWindow(Rect frame, bool isPrivate, bool hasOwnPlacement);
    void buildChrome();
    void dispose(const std::shared_ptr<BrowserTab>& tab);
    void rememberClosed(const BrowserTab& tab);
    bool revealExistingSettingsTab();
    bool windowShouldClose();
    void close();
    bool handleKeyPress(guint keyval, GdkModifierType state);
    void cancelOperation();
    void logGeometryOnce();

    static gboolean onCloseRequest(GtkWindow*, gpointer self);

    GObjectPtr<GtkWindow> m_window;
    bool m_isPrivate;
    bool m_isClosing = false;
    bool m_isClosed = false;
    bool m_focusAddressOnNextActivation = false;
    bool m_hasLoggedGeometry = false;
    Tabs m_tabs;
    std::unique_ptr<WindowFrame> m_frame;
    std::unique_ptr<WindowCommands> m_commands;
    std::unique_ptr<WindowChrome> m_chrome;
    std::unique_ptr<AddressEditing> m_addressEditing;
    std::unique_ptr<LeaveQuestions> m_leaveQuestions;
    // Tabs closed on their own that wait for their page to agree: they join the closed tabs once they go.
    std::set<BrowserTab*> m_closingTabs;
    Themed::Token m_themeToken;
    NotificationCenter::Token m_settingsToken;
};

} // namespace velder
