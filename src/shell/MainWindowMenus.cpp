// MainWindow's actions and menus: the menu bar's commands, the page menu, the tab menu and the wordmark menu.

#include "shell/MainWindow.h"

#include "bridge/VLDBrowserView.h"
#include "bridge/VLDContextMenuInfo.h"
#include "core/AppInfo.h"
#include "shell/AppDelegate.h"
#include "shell/BrowserTab.h"
#include "shell/InternalAddressGuard.h"
#include "shell/MenuBar.h"
#include "shell/PopupMenu.h"

namespace velder {

namespace {

using Kind = BrowserAction::Kind;

constexpr Kind menuActions[] = { Kind::newTab, Kind::closeTab, Kind::closeWindow, Kind::reopenClosedTab, Kind::nextTab,
    Kind::prevTab, Kind::selectLastTab, Kind::newWindow, Kind::newPrivateWindow, Kind::focusAddressBar, Kind::find,
    Kind::findNext, Kind::findPrev, Kind::reload, Kind::hardReload, Kind::stop, Kind::back, Kind::forward, Kind::home,
    Kind::zoomIn, Kind::zoomOut, Kind::zoomReset, Kind::devTools, Kind::history, Kind::settings };

void addAction(
    GSimpleActionGroup* group, const char* name, const GVariantType* parameter, GCallback callback, gpointer data)
{
    GSimpleAction* action = g_simple_action_new(name, parameter);
    g_signal_connect(action, "activate", callback, data);
    g_action_map_add_action(G_ACTION_MAP(group), G_ACTION(action));
    g_object_unref(action);
}

void appendAction(GMenu* menu, const char* title, BrowserAction action)
{
    GMenuItem* item = MenuBar::item(title, action);
    g_menu_append_item(menu, item);
    g_object_unref(item);
}

// The focused widget's own editing action ("clipboard.copy" on a text field), if it has one.
void forwardToFocus(GtkWindow* window, const char* action)
{
    if (GtkWidget* focus = gtk_window_get_focus(window)) {
        gtk_widget_activate_action(focus, action, nullptr);
    }
}

} // namespace

void MainWindow::installActions()
{
    m_actions = g_simple_action_group_new();
    for (Kind kind : menuActions) {
        std::string name = MenuBar::actionName(kind);
        GSimpleAction* action = g_simple_action_new(name.c_str(), nullptr);
        g_signal_connect(action, "activate", G_CALLBACK(+[](GSimpleAction* action, GVariant*, gpointer data) {
            if (auto named = MenuBar::actionNamed(g_action_get_name(G_ACTION(action)))) {
                static_cast<MainWindow*>(data)->perform(*named);
            }
        }),
            this);
        g_action_map_add_action(G_ACTION_MAP(m_actions), G_ACTION(action));
        g_object_unref(action);
    }
    auto* group = m_actions;
    addAction(group, "about", nullptr, G_CALLBACK(+[](GSimpleAction*, GVariant*, gpointer data) {
        static_cast<MainWindow*>(data)->openInternalPage(InternalRoute::about);
    }),
        this);
    addAction(group, "quit", nullptr, G_CALLBACK(+[](GSimpleAction*, GVariant*, gpointer) {
        if (GApplication* application = g_application_get_default()) {
            g_application_quit(application);
        }
    }),
        this);
    addAction(group, "toggleFullScreen", nullptr, G_CALLBACK(+[](GSimpleAction*, GVariant*, gpointer data) {
        auto* self = static_cast<MainWindow*>(data);
        if (self->isFullScreen()) {
            gtk_window_unfullscreen(self->window());
        } else {
            if (!self->isZoomed() && !self->isMinimized()) {
                self->frameBeforeNonNormalState = self->frame();
            }
            gtk_window_fullscreen(self->window());
        }
    }),
        this);
    addAction(group, "minimize", nullptr, G_CALLBACK(+[](GSimpleAction*, GVariant*, gpointer data) {
        auto* self = static_cast<MainWindow*>(data);
        if (!self->isZoomed() && !self->isFullScreen()) {
            self->frameBeforeNonNormalState = self->frame();
        }
        gtk_window_minimize(self->window());
    }),
        this);
    addAction(group, "zoom", nullptr, G_CALLBACK(+[](GSimpleAction*, GVariant*, gpointer data) {
        auto* self = static_cast<MainWindow*>(data);
        if (self->isZoomed()) {
            gtk_window_unmaximize(self->window());
        } else {
            self->zoom();
        }
    }),
        this);
    struct Edit {
        const char* name;
        const char* focusAction;
    };
    static constexpr Edit edits[] = { { "undo", "text.undo" }, { "redo", "text.redo" }, { "cut", "clipboard.cut" },
        { "copy", "clipboard.copy" }, { "paste", "clipboard.paste" }, { "selectAll", "selection.select-all" } };
    for (const Edit& edit : edits) {
        addAction(group, edit.name, nullptr, G_CALLBACK(+[](GSimpleAction* action, GVariant*, gpointer data) {
            auto* self = static_cast<MainWindow*>(data);
            for (const Edit& each : edits) {
                if (g_strcmp0(each.name, g_action_get_name(G_ACTION(action))) == 0) {
                    forwardToFocus(self->window(), each.focusAction);
                }
            }
        }),
            this);
    }

    // The page menu's items carry their text or address.
    addAction(group, "contextOpenLinkInNewTab", G_VARIANT_TYPE_STRING,
        G_CALLBACK(+[](GSimpleAction*, GVariant* parameter, gpointer data) {
            auto* self = static_cast<MainWindow*>(data);
            std::string url = g_variant_get_string(parameter, nullptr);
            auto tab = self->activeTab();
            if (!InternalAddressGuard::allows(url, tab ? tab->url : "")) {
                return;
            }
            self->install(BrowserTab::create(url, self->isPrivate()), true);
        }),
        this);
    addAction(group, "contextDownloadLink", G_VARIANT_TYPE_STRING,
        G_CALLBACK(+[](GSimpleAction*, GVariant* parameter, gpointer data) {
            auto* self = static_cast<MainWindow*>(data);
            std::string url = g_variant_get_string(parameter, nullptr);
            auto tab = self->activeTab();
            if (tab && InternalAddressGuard::allows(url, tab->url)) {
                tab->view()->startDownload(url);
            }
        }),
        this);
    addAction(group, "contextCopy", G_VARIANT_TYPE_STRING,
        G_CALLBACK(+[](GSimpleAction*, GVariant* parameter, gpointer data) {
            static_cast<MainWindow*>(data)->copyToClipboard(g_variant_get_string(parameter, nullptr));
        }),
        this);

    // The tab menu's items carry the tab's index; each checks it again, as tabs may change while it is open.
    struct TabCommand {
        const char* name;
        void (*run)(MainWindow&, std::size_t);
    };
    static constexpr TabCommand tabCommands[] = {
        { "tabReload",
            [](MainWindow& window, std::size_t index) {
                if (index < window.tabs.size()) {
                    window.tabs[index]->view()->reload();
                }
            } },
        { "tabDuplicate", [](MainWindow& window, std::size_t index) { window.tabMenuDuplicate(index); } },
        { "tabClose", [](MainWindow& window, std::size_t index) { window.closeTab(index); } },
        { "tabCloseOthers", [](MainWindow& window, std::size_t index) { window.tabMenuCloseOthers(index); } },
        { "tabCloseToRight", [](MainWindow& window, std::size_t index) { window.tabMenuCloseToRight(index); } },
    };
    for (const TabCommand& command : tabCommands) {
        addAction(group, command.name, G_VARIANT_TYPE_UINT32,
            G_CALLBACK(+[](GSimpleAction* action, GVariant* parameter, gpointer data) {
                for (const TabCommand& each : tabCommands) {
                    if (g_strcmp0(each.name, g_action_get_name(G_ACTION(action))) == 0) {
                        each.run(*static_cast<MainWindow*>(data), g_variant_get_uint32(parameter));
                    }
                }
            }),
            this);
    }
    // Items shown but not available point here: the tab menu's when they don't apply, and the updater's,
    // since this build has no update channel.
    for (const char* name : { "unavailable", "checkForUpdates" }) {
        GSimpleAction* off = g_simple_action_new(name, nullptr);
        g_simple_action_set_enabled(off, false);
        g_action_map_add_action(G_ACTION_MAP(group), G_ACTION(off));
        g_object_unref(off);
    }

    gtk_widget_insert_action_group(GTK_WIDGET(m_window.get()), "win", G_ACTION_GROUP(m_actions));
    g_object_unref(m_actions); // the window holds it
}

void MainWindow::updateActionStates()
{
    for (Kind kind : menuActions) {
        GAction* action = g_action_map_lookup_action(G_ACTION_MAP(m_actions), MenuBar::actionName(kind).c_str());
        if (action) {
            g_simple_action_set_enabled(G_SIMPLE_ACTION(action), isActionEnabled(kind));
        }
    }
}

GMenuModel* MainWindow::wordmarkMenu()
{
    GMenu* menu = g_menu_new();
    GMenu* windows = g_menu_new();
    appendAction(windows, "New Window", Kind::newWindow);
    appendAction(windows, "New Private Window", Kind::newPrivateWindow);
    g_menu_append_section(menu, nullptr, G_MENU_MODEL(windows));
    g_object_unref(windows);
    GMenu* pages = g_menu_new();
    appendAction(pages, "Settings", Kind::settings);
    appendAction(pages, "History", Kind::history);
    g_menu_append(pages, ("About Velder " + AppInfo::version()).c_str(), "win.about");
    g_menu_append_section(menu, nullptr, G_MENU_MODEL(pages));
    g_object_unref(pages);
    GMenu* updates = g_menu_new();
    // This build has no update feed, so the item says so and stays disabled.
    g_menu_append(updates, "This build has no update channel.", "win.checkForUpdates");
    g_menu_append_section(menu, nullptr, G_MENU_MODEL(updates));
    g_object_unref(updates);
    GMenu* quit = g_menu_new();
    g_menu_append(quit, "Quit Velder", "win.quit");
    g_menu_append_section(menu, nullptr, G_MENU_MODEL(quit));
    g_object_unref(quit);
    return G_MENU_MODEL(menu);
}

GMenuModel* MainWindow::tabContextMenu(std::size_t index)
{
    if (index >= tabs.size()) {
        return nullptr;
    }
    auto entry = [&](GMenu* menu, const char* title, const char* action, bool enabled) {
        GMenuItem* item = g_menu_item_new(title, nullptr);
        if (enabled) {
            g_menu_item_set_action_and_target_value(
                item, (std::string("win.") + action).c_str(), g_variant_new_uint32(static_cast<guint32>(index)));
        } else {
            g_menu_item_set_detailed_action(item, "win.unavailable");
        }
        g_menu_append_item(menu, item);
        g_object_unref(item);
    };
    GMenu* menu = g_menu_new();
    GMenu* first = g_menu_new();
    entry(first, "Reload", "tabReload", true);
    entry(first, "Duplicate", "tabDuplicate", true);
    g_menu_append_section(menu, nullptr, G_MENU_MODEL(first));
    g_object_unref(first);
    GMenu* second = g_menu_new();
    entry(second, "Close", "tabClose", true);
    entry(second, "Close Others", "tabCloseOthers", tabs.size() >= 2);
    entry(second, "Close to the Right", "tabCloseToRight", index + 1 < tabs.size());
    g_menu_append_section(menu, nullptr, G_MENU_MODEL(second));
    g_object_unref(second);
    return G_MENU_MODEL(menu);
}

bool MainWindow::showPageContextMenu(const VLDContextMenuInfo& info)
{
    if (info.isEditable) {
        return true; // text fields keep the engine's own menu: cut, copy, paste
    }
    GMenu* menu = g_menu_new();
    auto entry = [](GMenu* section, const char* title, const char* action, const std::string& value) {
        GMenuItem* item = g_menu_item_new(title, nullptr);
        g_menu_item_set_action_and_target_value(item, action, g_variant_new_string(value.c_str()));
        g_menu_append_item(section, item);
        g_object_unref(item);
    };
    auto addSection = [&](GMenu* section) {
        g_menu_append_section(menu, nullptr, G_MENU_MODEL(section));
        g_object_unref(section);
    };
    if (!info.linkURL.empty()) {
        GMenu* link = g_menu_new();
        entry(link, "Open Link in New Tab", "win.contextOpenLinkInNewTab", info.linkURL);
        entry(link, "Download Linked File", "win.contextDownloadLink", info.linkURL);
        entry(link, "Copy Link", "win.contextCopy", info.linkURL);
        addSection(link);
    }
    if (!info.sourceURL.empty() && info.sourceURL != info.linkURL) {
        GMenu* image = g_menu_new();
        entry(image, "Download Image", "win.contextDownloadLink", info.sourceURL);
        entry(image, "Copy Image Address", "win.contextCopy", info.sourceURL);
        addSection(image);
    }
    if (!info.selectionText.empty()) {
        GMenu* selection = g_menu_new();
        entry(selection, "Copy", "win.contextCopy", info.selectionText);
        addSection(selection);
    }
    GMenu* navigation = g_menu_new();
    appendAction(navigation, "Back", Kind::back);
    appendAction(navigation, "Forward", Kind::forward);
    appendAction(navigation, "Reload", Kind::reload);
    addSection(navigation);

    // Shown after the engine's call has returned, at the pointer.
    struct Pending {
        std::weak_ptr<MainWindow> window;
        GMenuModel* menu;
    };
    updateActionStates();
    auto* pending = new Pending { weak_from_this(), G_MENU_MODEL(menu) };
    g_idle_add_once(
        +[](gpointer data) {
            auto* pending = static_cast<Pending*>(data);
            if (auto self = pending->window.lock()) {
                double x = 0;
                double y = 0;
                GdkSurface* surface = gtk_native_get_surface(GTK_NATIVE(self->window()));
                GdkSeat* seat = gdk_display_get_default_seat(gdk_display_get_default());
                if (surface && seat && gdk_seat_get_pointer(seat)) {
                    gdk_surface_get_device_position(surface, gdk_seat_get_pointer(seat), &x, &y, nullptr);
                }
                double surfaceX = 0;
                double surfaceY = 0;
                gtk_native_get_surface_transform(GTK_NATIVE(self->window()), &surfaceX, &surfaceY);
                graphene_point_t point
                    = GRAPHENE_POINT_INIT(static_cast<float>(x - surfaceX), static_cast<float>(y - surfaceY));
                graphene_point_t inAnchor = point;
                (void)!gtk_widget_compute_point(GTK_WIDGET(self->window()), self->m_pageMenuAnchor, &point, &inAnchor);
                PopupMenu::popup(self->m_pageMenuAnchor, pending->menu, inAnchor.x, inAnchor.y);
            }
            g_object_unref(pending->menu);
            delete pending;
        },
        pending);
    return false;
}

void MainWindow::copyToClipboard(const std::string& text)
{
    if (text.empty()) {
        return;
    }
    gdk_clipboard_set_text(gtk_widget_get_clipboard(GTK_WIDGET(m_window.get())), text.c_str());
}

} // namespace velder
