#pragma once

#include <gtk/gtk.h>
#include <memory>
#include <string>

namespace velder {

class AddressBar;
class BlankSlate;
class BrowserTab;
class FindBar;
class LinkStatus;
class LocationPrompt;
class MainWindow;
class TabStrip;
class TitleBar;
class Toolbar;
class UrlSuggestions;

// The widgets of a window round its pages: the title bar, the hidden menu bar, the toolbar, the page area
// with what lies over it (the page menu's anchor, the blank slate, the location prompt, the find bar, the link status)
// and the suggestion list that hangs under the address bar. It builds them into the window; connect() hands their
// events to the window.
class WindowChrome {
public:
    WindowChrome(GtkWindow* window, bool isPrivate);
    ~WindowChrome();
    WindowChrome(const WindowChrome&) = delete;
    WindowChrome& operator=(const WindowChrome&) = delete;

    TitleBar& titleBar() const { return *m_titleBar; }
    Toolbar& toolbar() const { return *m_toolbar; }
    TabStrip& strip() const;
    AddressBar& addressBar() const;
    UrlSuggestions& suggestions() const { return *m_suggestions; }
    FindBar& findBar() const { return *m_findBar; }
    BlankSlate& slate() const { return *m_slate; }
    LinkStatus& linkStatus() const { return *m_linkStatus; }
    LocationPrompt& locationBar() const { return *m_locationBar; }
    GtkWidget* menuBar() const { return m_menuBar; }
    // The box that holds the tabs' views; only the active one is visible.
    GtkWidget* container() const { return m_container; }
    GtkWidget* pageMenuAnchor() const { return m_pageMenuAnchor; }

    // Hands the strip's, toolbar's, find bar's, wordmark's and location pin's and prompt's events to the window.
    void connect(const std::weak_ptr<MainWindow>& window);
    // The location prompt shows the active tab's parked request while location services are on; the find bar
    // moves down below it.
    void syncLocationBar(const BrowserTab* activeTab, bool locationEnabled);
    // Where the parts stand in the window, for the log.
    std::string geometry() const;

    // The window's own surfaces in the theme's colours: its background in the border colour, the page area
    // in the fixed background; the widgets follow the theme by themselves.
    void applyTheme();

private:
    GtkWidget* buildPageArea();
    static gboolean placeSuggestions(GtkOverlay*, GtkWidget* child, GdkRectangle* allocation, gpointer self);

    GtkWindow* m_window;
    std::unique_ptr<TitleBar> m_titleBar;
    std::unique_ptr<Toolbar> m_toolbar;
    std::unique_ptr<BlankSlate> m_slate;
    std::unique_ptr<FindBar> m_findBar;
    std::unique_ptr<LinkStatus> m_linkStatus;
    std::unique_ptr<LocationPrompt> m_locationBar;
    std::unique_ptr<UrlSuggestions> m_suggestions;
    GtkWidget* m_menuBar = nullptr; // these belong to the window's widget tree
    GtkWidget* m_container = nullptr;
    GtkWidget* m_pageMenuAnchor = nullptr;
};

} // namespace velder
