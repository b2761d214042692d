#include "shell/window/WindowCommands.h"

#include "bridge/VLDBrowserView.h"
#include "bridge/VLDInternalAddress.h"
#include "core/ActionTable.h"
#include "core/UpdateController.h"
#include "core/Vault.h"
#include "shell/chrome/AddressBar.h"
#include "shell/chrome/KeyboardFocus.h"
#include "shell/chrome/TabSlot.h"
#include "shell/chrome/TabStrip.h"
#include "shell/overlays/FindBar.h"
#include "shell/tab/BrowserTab.h"
#include "shell/window/AppDelegate.h"
#include "shell/window/MainWindow.h"

#include <gtk/gtk.h>
#include <string>

namespace velder {

namespace {

using Kind = BrowserAction::Kind;

// The focused widget's own editing action ("clipboard.copy" on a text field), if it has one.
void forwardToFocus(MainWindow& window, const char* action)
{
    if (GtkWidget* focus = gtk_window_get_focus(window.window())) {
        gtk_widget_activate_action(focus, action, nullptr);
    }
}

// A tab menu item carries the tab's index; tabs may have changed while the menu was open.
std::shared_ptr<BrowserTab> tabAt(MainWindow& window, GVariant* index)
{
    auto position = static_cast<std::size_t>(g_variant_get_uint32(index));
    return position < window.tabs().size() ? window.tabs()[position] : nullptr;
}

// F6 and Shift+F6 go round the window's three parts, as in other Linux browsers: the address bar, the page,
// the tab strip (its active tab). From anywhere else (the find bar, a button) F6 starts at the address bar.
void focusNextPart(MainWindow& window, bool forward)
{
    enum Part { address, page, strip, count };
    GtkWidget* focus = gtk_root_get_focus(GTK_ROOT(window.window()));
    auto tab = window.activeTab();
    auto within = [focus](GtkWidget* area) { return focus && (focus == area || gtk_widget_is_ancestor(focus, area)); };
    int now = -1;
    if (window.addressBar().isEditing()) {
        now = address;
    } else if (within(window.strip().widget())) {
        now = strip;
    } else if (tab && (within(tab->view()->widget()) || !focus)) {
        now = page;
    }
    int next = now < 0 ? (forward ? address : strip) : (now + (forward ? 1 : count - 1)) % count;
    if (next == address) {
        window.addressBar().focusAndSelectAll();
    } else if (next == page) {
        window.focusPage();
    } else if (window.activeIndex() < window.strip().slotCount()) {
        KeyboardFocus::grabByKeyboard(window.strip().slot(window.activeIndex()).widget());
    }
}

} // namespace

WindowCommands::WindowCommands(MainWindow& window)
    : m_window(window)
    , m_group(GObjectPtr<GSimpleActionGroup>::adopt(g_simple_action_group_new()))
{
    addBrowserCommands();
    addWindowCommands();
    addMenuItems();
}

void WindowCommands::add(const char* name, const GVariantType* parameter, Run run)
{
    struct Slot {
        std::weak_ptr<MainWindow> window;
        Run run;
    };
    GSimpleAction* action = g_simple_action_new(name, parameter);
    g_signal_connect_data(
        action, "activate", G_CALLBACK(+[](GSimpleAction*, GVariant* value, gpointer data) {
            auto* slot = static_cast<Slot*>(data);
            if (auto window = slot->window.lock()) {
                slot->run(*window, value);
            }
        }),
        new Slot { m_window.weak_from_this(), std::move(run) },
        [](gpointer data, GClosure*) { delete static_cast<Slot*>(data); }, GConnectFlags(0));
    g_action_map_add_action(G_ACTION_MAP(m_group.get()), G_ACTION(action));
    g_object_unref(action);
}

void WindowCommands::addBrowserCommands()
{
    for (const ActionRow& row : ActionTable::rows()) {
        if (row.action) {
            BrowserAction command = *row.action;
            add(std::string(row.name).c_str(), nullptr,
                [command](MainWindow& window, GVariant*) { window.perform(command); });
        }
    }
}

void WindowCommands::addWindowCommands()
{
    add("about", nullptr, [](MainWindow& window, GVariant*) { window.openInternalPage(InternalRoute::about); });
    add("quit", nullptr, [](MainWindow&, GVariant*) {
        if (GApplication* application = g_application_get_default()) {
            g_application_quit(application);
        }
    });
    add("toggleFullScreen", nullptr, [](MainWindow& window, GVariant*) { window.placement().toggleFullScreen(); });
    add("focusNextPart", nullptr, [](MainWindow& window, GVariant*) { focusNextPart(window, true); });
    add("focusPreviousPart", nullptr, [](MainWindow& window, GVariant*) { focusNextPart(window, false); });
    add("minimize", nullptr, [](MainWindow& window, GVariant*) { window.placement().minimize(); });
    add("zoom", nullptr, [](MainWindow& window, GVariant*) { window.placement().toggleZoom(); });
    static constexpr std::pair<const char*, const char*> edits[]
        = { { "undo", "text.undo" }, { "redo", "text.redo" }, { "cut", "clipboard.cut" }, { "copy", "clipboard.copy" },
              { "paste", "clipboard.paste" }, { "selectAll", "selection.select-all" } };
    for (auto [name, focusAction] : edits) {
        add(name, nullptr, [focusAction](MainWindow& window, GVariant*) { forwardToFocus(window, focusAction); });
    }
    // Shown but not available: the tab menu's items that don't apply.
    GSimpleAction* off = g_simple_action_new("unavailable", nullptr);
    g_simple_action_set_enabled(off, false);
    g_action_map_add_action(G_ACTION_MAP(m_group.get()), G_ACTION(off));
    g_object_unref(off);
    // The updater's item: a check the user asked for, when the controller can start one.
    add("checkForUpdates", nullptr, [](MainWindow&, GVariant*) { UpdateController::shared().checkForUpdates(); });
    m_updateToken = NotificationCenter::defaultCenter().addObserver(
        UpdateController::stateDidChangeNotification, [this](const Notification&) { updateStates(); });
}

void WindowCommands::addMenuItems()
{
    // The page menu's items carry a link, image address or selection that the page supplied.
    add("contextOpenLinkInNewTab", G_VARIANT_TYPE_STRING, [](MainWindow& window, GVariant* value) {
        std::string url = g_variant_get_string(value, nullptr);
        auto tab = window.activeTab();
        if (VLDInternalAddress::pageMayOpen(tab ? tab->url : "", url)) {
            window.install(BrowserTab::create(url, window.isPrivate()), true);
        }
    });
    add("contextDownloadLink", G_VARIANT_TYPE_STRING, [](MainWindow& window, GVariant* value) {
        std::string url = g_variant_get_string(value, nullptr);
        auto tab = window.activeTab();
        if (tab && VLDInternalAddress::pageMayOpen(tab->url, url)) {
            tab->view()->startDownload(url);
        }
    });
    add("contextCopy", G_VARIANT_TYPE_STRING, [](MainWindow& window, GVariant* value) {
        if (const char* text = g_variant_get_string(value, nullptr); text && *text) {
            gdk_clipboard_set_text(gtk_widget_get_clipboard(GTK_WIDGET(window.window())), text);
        }
    });

    add("tabReload", G_VARIANT_TYPE_UINT32, [](MainWindow& window, GVariant* index) {
        if (auto tab = tabAt(window, index)) {
            tab->view()->reload();
        }
    });
    add("tabDuplicate", G_VARIANT_TYPE_UINT32, [](MainWindow& window, GVariant* index) {
        if (auto tab = tabAt(window, index)) {
            window.install(BrowserTab::create(tab->url, window.isPrivate()), true);
        }
    });
    add("tabClose", G_VARIANT_TYPE_UINT32, [](MainWindow& window, GVariant* index) {
        if (auto tab = tabAt(window, index)) {
            window.closeTabs({ tab });
        }
    });
    add("tabCloseOthers", G_VARIANT_TYPE_UINT32, [](MainWindow& window, GVariant* index) {
        if (tabAt(window, index)) {
            window.closeTabs(window.tabModel().tabsOtherThan(g_variant_get_uint32(index)));
        }
    });
    add("tabCloseToRight", G_VARIANT_TYPE_UINT32, [](MainWindow& window, GVariant* index) {
        if (tabAt(window, index)) {
            window.closeTabs(window.tabModel().tabsAfter(g_variant_get_uint32(index)));
        }
    });
}

void WindowCommands::updateStates()
{
    if (GAction* update = g_action_map_lookup_action(G_ACTION_MAP(m_group.get()), "checkForUpdates")) {
        g_simple_action_set_enabled(G_SIMPLE_ACTION(update), UpdateController::shared().menuItemEnabled());
    }
    for (const ActionRow& row : ActionTable::rows()) {
        if (!row.action) {
            continue;
        }
        GAction* action = g_action_map_lookup_action(G_ACTION_MAP(m_group.get()), std::string(row.name).c_str());
        if (action) {
            g_simple_action_set_enabled(G_SIMPLE_ACTION(action), isEnabled(*row.action));
        }
    }
}

bool WindowCommands::isEnabled(BrowserAction action) const
{
    auto tab = m_window.activeTab();
    switch (action.kind) {
    case Kind::reopenClosedTab:
        return AppDelegate::shared() && !AppDelegate::shared()->closedTabs().empty();
    case Kind::stop:
        return tab && tab->isLoading;
    case Kind::back:
        return tab && tab->canGoBack;
    case Kind::forward:
        return tab && tab->canGoForward;
    case Kind::findNext:
    case Kind::findPrev:
        return m_window.findBarIsShowing() || tab;
    default:
        return true;
    }
}

void WindowCommands::perform(BrowserAction action)
{
    if (!performOnTabs(action) && !performOnPage(action)) {
        performInApplication(action);
    }
}

// Commands on the window's tabs and chrome.
bool WindowCommands::performOnTabs(BrowserAction action)
{
    MainWindow& window = m_window;
    std::size_t count = window.tabs().size();
    switch (action.kind) {
    case Kind::selectTab:
        if (action.tab >= 1) {
            window.selectTab(static_cast<std::size_t>(action.tab - 1));
        }
        return true;
    case Kind::newTab:
        window.newTab();
        return true;
    case Kind::closeTab:
        window.closeTab(window.activeIndex());
        return true;
    case Kind::closeWindow:
        window.performClose();
        return true;
    case Kind::nextTab:
        window.selectTab(window.tabModel().nextIndex());
        return true;
    case Kind::prevTab:
        window.selectTab(window.tabModel().previousIndex());
        return true;
    case Kind::selectLastTab:
        if (count > 0) {
            window.selectTab(count - 1);
        }
        return true;
    case Kind::focusAddressBar:
        window.addressBar().focusAndSelectAll();
        return true;
    case Kind::find:
        window.openFindBar();
        return true;
    case Kind::findNext:
    case Kind::findPrev:
        if (!window.findBarIsShowing()) {
            window.openFindBar();
        } else if (auto tab = window.activeTab()) {
            tab->find(window.findBar().text(), action.kind == Kind::findNext, true);
        }
        return true;
    default:
        return false;
    }
}

// Commands on the active tab's page.
bool WindowCommands::performOnPage(BrowserAction action)
{
    auto tab = m_window.activeTab();
    VLDBrowserView* view = tab ? tab->view().get() : nullptr;
    switch (action.kind) {
    case Kind::reload:
    case Kind::hardReload:
        return view && (tab->reload(action.kind == Kind::hardReload), true);
    case Kind::stop:
        return view && (view->stopLoading(), true);
    case Kind::back:
        return view && (view->goBack(), true);
    case Kind::forward:
        return view && (view->goForward(), true);
    case Kind::devTools:
        return view && (view->showDevTools(), true);
    case Kind::home:
        if (view) {
            m_window.navigateActiveTab(
                m_window.isPrivate() ? "about:blank" : Vault::shared().snapshot()->settings.homepage);
        }
        return true;
    default:
        return false;
    }
}

// Commands that reach beyond the window: other windows, the zoom of every view, the internal pages.
void WindowCommands::performInApplication(BrowserAction action)
{
    AppDelegate* delegate = AppDelegate::shared();
    switch (action.kind) {
    case Kind::reopenClosedTab:
        if (delegate) {
            delegate->reopenClosedTab(&m_window);
        }
        break;
    case Kind::newWindow:
        if (delegate) {
            delegate->openWindow(Vault::shared().snapshot()->settings.homepage, &m_window);
        }
        break;
    case Kind::newPrivateWindow:
        if (delegate) {
            delegate->openPrivateWindow(&m_window);
        }
        break;
    case Kind::zoomIn:
    case Kind::zoomOut:
    case Kind::zoomReset:
        if (delegate) {
            double step = action.kind == Kind::zoomIn ? 1.0 : -1.0;
            delegate->setZoom(action.kind == Kind::zoomReset ? 0.0 : AppDelegate::zoomLevel + step, &m_window);
        }
        break;
    case Kind::history:
        m_window.openInternalPage(InternalRoute::history);
        break;
    case Kind::settings:
        m_window.openInternalPage(InternalRoute::settings);
        break;
    default:
        break;
    }
}

} // namespace velder
