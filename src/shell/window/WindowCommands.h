#pragma once

#include "core/BrowserAction.h"
#include "core/NotificationCenter.h"
#include "glib/GObjectPtr.h"

#include <functional>
#include <gio/gio.h>

namespace velder {

class MainWindow;

// The commands of one window. Every browser command runs in perform(); the window's actions ("win.newTab",
// "win.quit", the items of the page and tab menus), which the menus name, are made here from the action
// table, and their enabled states follow the active tab.
class WindowCommands {
public:
    explicit WindowCommands(MainWindow& window);
    WindowCommands(const WindowCommands&) = delete;
    WindowCommands& operator=(const WindowCommands&) = delete;

    GActionGroup* actions() const { return G_ACTION_GROUP(m_group.get()); }
    void perform(BrowserAction action);
    bool isEnabled(BrowserAction action) const;
    void updateStates();

private:
    using Run = std::function<void(MainWindow&, GVariant*)>;
    void add(const char* name, const GVariantType* parameter, Run run);
    void addBrowserCommands();
    void addWindowCommands();
    void addMenuItems();
    bool performOnTabs(BrowserAction action);
    bool performOnPage(BrowserAction action);
    void performInApplication(BrowserAction action);

    MainWindow& m_window;
    GObjectPtr<GSimpleActionGroup> m_group;
    NotificationCenter::Token m_updateToken;
};

} // namespace velder
