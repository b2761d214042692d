#pragma once

#include "core/BrowserAction.h"
#include "core/InternalRoute.h"
#include "core/NotificationCenter.h"
#include "core/WindowSession.h"
#include "glib/GObjectPtr.h"
#include "shell/Themed.h"
#include "shell/WindowPlacement.h"

#include <gtk/gtk.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velder {

class AddressBar;
class BlankSlate;
class BrowserTab;
class ChromeButton;
class FindBar;
class TabStrip;
class TitlebarRow;
class ToolbarRow;
class UpdateSlot;
class UrlSuggestions;
struct VLDContextMenuInfo;

// One browser window: it owns its tabs, knows the active one, runs every command, and takes tabs to their
// end through the engine (a tab leaves only when its browser is gone). Its chrome is drawn by Velder: the tab
// strip in the title bar, the toolbar with the address bar, the page area.
//
// Main thread only. The window registry keeps windows alive while they are open.
class MainWindow : public std::enable_shared_from_this<MainWindow> {
public:
    static std::shared_ptr<MainWindow> create(Rect frame, bool isPrivate, bool hasOwnPlacement);
    // A window rebuilt from a saved record: its frame (or the default one), its tabs, its active tab.
    static std::shared_ptr<MainWindow> create(const WindowSession& session);
    ~MainWindow();

    GtkWindow* window() const { return m_window.get(); }
    static MainWindow* fromWindow(GtkWindow* window);

    // The tab model.
    std::vector<std::shared_ptr<BrowserTab>> tabs;
    std::size_t activeIndex = 0;
    bool isPrivate() const { return m_isPrivate; }
    bool isClosing() const { return m_isClosing; }
    bool hasOwnPlacement = false;
    Rect frameBeforeNonNormalState;
    std::shared_ptr<BrowserTab> activeTab() const;

    void selectTab(std::size_t index);
    void install(std::shared_ptr<BrowserTab> tab, bool activate);
    void closeTab(std::size_t index);
    void dispose(const std::shared_ptr<BrowserTab>& tab);
    void moveTab(std::size_t from, std::size_t to);
    void perform(BrowserAction action);
    bool isActionEnabled(BrowserAction action) const;
    void requestCloseBrowsers();
    void openInternalPage(InternalRoute route);
    bool revealExistingSettingsTab();
    void focusForActiveTab();
    void refreshChrome();
    // Loads the URL in the active tab and gives the page the keyboard.
    void navigateActiveTab(const std::string& url);
    WindowSession sessionRecord() const;

    void openFindBar();
    void closeFindBar();
    bool findBarIsShowing() const;
    void syncLocationBar();

    // The tab menu's commands, on the tab whose index the menu carries.
    void tabMenuCloseOthers(std::size_t index);
    void tabMenuCloseToRight(std::size_t index);
    void tabMenuDuplicate(std::size_t index);

    // The page's menu: false tells the engine to show none of its own.
    bool showPageContextMenu(const VLDContextMenuInfo& info);

    // The platform window.
    void performClose(); // as the close button: may wait for the pages' unload handlers
    void makeKeyAndOrderFront();
    Rect frame() const;
    bool isZoomed() const;
    bool isFullScreen() const;
    bool isMinimized() const;
    void zoom(); // maximise

    // The windows' usable screen areas, the main screen's first (X11; empty where positions are unknown).
    static std::vector<Rect> visibleFrames();
    static Rect defaultFrame() { return WindowPlacement::defaultFrame(visibleFrames()); }
    static Rect frameCascadingFrom(const MainWindow* source);

    // The chrome, for tests and screenshots.
    AddressBar& addressBar() const { return *m_addressBar; }
    UrlSuggestions& suggestions() const { return *m_suggestions; }
    FindBar& findBar() const { return *m_findBar; }
    TabStrip& strip() const { return *m_strip; }
    GtkWidget* container() const { return m_container; }
    bool slateIsShowing() const;
    // The window's actions ("win.newTab" ...), which the menus name.
    GActionGroup* actions() const { return G_ACTION_GROUP(m_actions); }

private:
    MainWindow(Rect frame, bool isPrivate, bool hasOwnPlacement);
    void buildChrome();
    void buildTitlebar();
    void buildToolbar();
    void wireAddressBar();
    void wireFindBar();
    void installActions();
    void applyTheme();
    void applyFrame(const Rect& frame);
    bool windowShouldClose();
    void windowWillClose();
    void close();
    void newTab();
    bool handleKeyPress(guint keyval, GdkModifierType state);
    void cancelOperation();
    GMenuModel* tabContextMenu(std::size_t index);
    GMenuModel* wordmarkMenu();
    void updateActionStates();
    void copyToClipboard(const std::string& text);

    void trackPlacement();

    static gboolean onCloseRequest(GtkWindow*, gpointer self);
    static void onStateChanged(GObject*, GParamSpec*, gpointer self);
    static void onSizeChanged(GObject*, GParamSpec*, gpointer self);

    GObjectPtr<GtkWindow> m_window;
    GSimpleActionGroup* m_actions = nullptr; // owned by the window once inserted
    bool m_isPrivate;
    bool m_isClosing = false;
    bool m_isClosed = false;
    bool m_focusAddressOnNextActivation = false;
    bool m_hasLoggedGeometry = false;
    std::vector<std::shared_ptr<BrowserTab>> m_tabsAwaitingClose;

    std::unique_ptr<TabStrip> m_strip;
    std::unique_ptr<TitlebarRow> m_titlebarRow;
    std::unique_ptr<ChromeButton> m_wordmark;
    std::unique_ptr<UpdateSlot> m_updateSlot;
    std::unique_ptr<ToolbarRow> m_toolbarRow;
    std::unique_ptr<ChromeButton> m_backButton;
    std::unique_ptr<ChromeButton> m_forwardButton;
    std::unique_ptr<ChromeButton> m_reloadButton;
    std::unique_ptr<AddressBar> m_addressBar;
    GtkWidget* m_overlay = nullptr;
    GtkWidget* m_container = nullptr;
    GtkWidget* m_pageMenuAnchor = nullptr; // over the page, for the page's menu
    std::unique_ptr<BlankSlate> m_slate;
    std::unique_ptr<UrlSuggestions> m_suggestions;
    std::unique_ptr<FindBar> m_findBar;
    Themed::Token m_themeToken;
    NotificationCenter::Token m_settingsToken;
    GdkToplevelState m_lastState = GdkToplevelState(0);
};

} // namespace velder
