#include "shell/MenuBar.h"

#include "core/Shortcuts.h"
#include "shell/KeyEvents.h"

#include <array>
#include <utility>

namespace velder::MenuBar {

namespace {

using Kind = BrowserAction::Kind;

constexpr std::array<std::pair<Kind, const char*>, 25> names { {
    { Kind::newTab, "newTab" },
    { Kind::closeTab, "closeTab" },
    { Kind::closeWindow, "closeWindow" },
    { Kind::reopenClosedTab, "reopenClosedTab" },
    { Kind::nextTab, "nextTab" },
    { Kind::prevTab, "prevTab" },
    { Kind::selectLastTab, "selectLastTab" },
    { Kind::newWindow, "newWindow" },
    { Kind::newPrivateWindow, "newPrivateWindow" },
    { Kind::focusAddressBar, "focusAddressBar" },
    { Kind::find, "find" },
    { Kind::findNext, "findNext" },
    { Kind::findPrev, "findPrev" },
    { Kind::reload, "reload" },
    { Kind::hardReload, "hardReload" },
    { Kind::stop, "stop" },
    { Kind::back, "back" },
    { Kind::forward, "forward" },
    { Kind::home, "home" },
    { Kind::zoomIn, "zoomIn" },
    { Kind::zoomOut, "zoomOut" },
    { Kind::zoomReset, "zoomReset" },
    { Kind::devTools, "devTools" },
    { Kind::history, "history" },
    { Kind::settings, "settings" },
} };

GMenuItem* plain(const char* title, const char* action, const char* accel = nullptr)
{
    GMenuItem* item = g_menu_item_new(title, action);
    if (accel) {
        g_menu_item_set_attribute(item, "accel", "s", accel);
    }
    return item;
}

void append(GMenu* menu, GMenuItem* item)
{
    g_menu_append_item(menu, item);
    g_object_unref(item);
}

// Lines between groups become sections.
GMenu* section(GMenu* menu)
{
    GMenu* group = g_menu_new();
    g_menu_append_section(menu, nullptr, G_MENU_MODEL(group));
    g_object_unref(group);
    return group;
}

void submenu(GMenu* bar, const char* title, GMenu* menu)
{
    g_menu_append_submenu(bar, title, G_MENU_MODEL(menu));
    g_object_unref(menu);
}

} // namespace

std::string actionName(BrowserAction action)
{
    for (auto& [kind, name] : names) {
        if (kind == action.kind) {
            return name;
        }
    }
    return "";
}

std::optional<BrowserAction> actionNamed(std::string_view name)
{
    for (auto& [kind, actionName] : names) {
        if (name == actionName) {
            return BrowserAction(kind);
        }
    }
    return std::nullopt;
}

GMenuItem* item(const char* title, BrowserAction action)
{
    std::string detailed = "win." + actionName(action);
    GMenuItem* menuItem = g_menu_item_new(title, detailed.c_str());
    if (auto key = Shortcuts::menuKeyEquivalent(action)) {
        g_menu_item_set_attribute(menuItem, "accel", "s", KeyEvents::accelerator(key->first, key->second).c_str());
    }
    return menuItem;
}

GMenuModel* mainMenu()
{
    GMenu* bar = g_menu_new();

    GMenu* velder = g_menu_new();
    GMenu* group = section(velder);
    append(group, plain("About Velder", "win.about"));
    // This build has no update feed: the item says so, and stays off.
    append(group, plain("This build has no update channel.", "win.checkForUpdates"));
    group = section(velder);
    append(group, item("Settings\xe2\x80\xa6", Kind::settings));
    group = section(velder);
    append(group, plain("Quit Velder", "win.quit", "<Control>q"));
    submenu(bar, "Velder", velder);

    GMenu* file = g_menu_new();
    group = section(file);
    append(group, item("New Window", Kind::newWindow));
    append(group, item("New Private Window", Kind::newPrivateWindow));
    append(group, item("New Tab", Kind::newTab));
    group = section(file);
    append(group, item("Close Tab", Kind::closeTab));
    append(group, item("Close Window", Kind::closeWindow));
    append(group, item("Reopen Closed Tab", Kind::reopenClosedTab));
    submenu(bar, "File", file);

    GMenu* edit = g_menu_new();
    group = section(edit);
    append(group, plain("Undo", "win.undo", "<Control>z"));
    append(group, plain("Redo", "win.redo", "<Control><Shift>z"));
    group = section(edit);
    append(group, plain("Cut", "win.cut", "<Control>x"));
    append(group, plain("Copy", "win.copy", "<Control>c"));
    append(group, plain("Paste", "win.paste", "<Control>v"));
    append(group, plain("Select All", "win.selectAll", "<Control>a"));
    group = section(edit);
    GMenu* find = g_menu_new();
    append(find, item("Find\xe2\x80\xa6", Kind::find));
    append(find, item("Find Next", Kind::findNext));
    append(find, item("Find Previous", Kind::findPrev));
    submenu(group, "Find", find);
    submenu(bar, "Edit", edit);

    GMenu* view = g_menu_new();
    group = section(view);
    append(group, item("Reload", Kind::reload));
    append(group, item("Force Reload", Kind::hardReload));
    append(group, item("Stop", Kind::stop));
    group = section(view);
    append(group, item("Zoom In", Kind::zoomIn));
    append(group, item("Zoom Out", Kind::zoomOut));
    append(group, item("Actual Size", Kind::zoomReset));
    group = section(view);
    append(group, plain("Enter Full Screen", "win.toggleFullScreen", "F11"));
    group = section(view);
    GMenu* developer = g_menu_new();
    append(developer, item("Developer Tools", Kind::devTools));
    submenu(group, "Developer", developer);
    submenu(bar, "View", view);

    GMenu* history = g_menu_new();
    group = section(history);
    append(group, item("Back", Kind::back));
    append(group, item("Forward", Kind::forward));
    append(group, item("Home", Kind::home));
    group = section(history);
    append(group, item("Show All History", Kind::history));
    submenu(bar, "History", history);

    GMenu* window = g_menu_new();
    group = section(window);
    append(group, plain("Minimize", "win.minimize"));
    append(group, plain("Zoom", "win.zoom"));
    group = section(window);
    append(group, item("Select Next Tab", Kind::nextTab));
    append(group, item("Select Previous Tab", Kind::prevTab));
    submenu(bar, "Window", window);

    GMenu* help = g_menu_new();
    append(help, plain("Velder Help", "win.about"));
    submenu(bar, "Help", help);

    return G_MENU_MODEL(bar);
}

GtkWidget* createMenuBarWidget()
{
    GMenuModel* model = mainMenu();
    GtkWidget* bar = gtk_popover_menu_bar_new_from_model(model);
    g_object_unref(model);
    return bar;
}

void attachRevealKeys(GtkWindow* window, GtkWidget* menuBar)
{
    struct State {
        GtkWidget* bar;
        bool loneAlt = false;
    };
    auto* state = new State { menuBar };
    GtkEventController* keys = gtk_event_controller_key_new();
    gtk_event_controller_set_propagation_phase(keys, GTK_PHASE_CAPTURE);
    g_signal_connect_data(
        keys, "key-pressed",
        G_CALLBACK(
            +[](GtkEventControllerKey*, guint keyval, guint, GdkModifierType modifiers, gpointer data) -> gboolean {
                auto* state = static_cast<State*>(data);
                bool isAlt = keyval == GDK_KEY_Alt_L || keyval == GDK_KEY_Alt_R;
                state->loneAlt = isAlt && (modifiers & (GDK_CONTROL_MASK | GDK_SHIFT_MASK)) == 0;
                if (keyval == GDK_KEY_F10 && (modifiers & (GDK_CONTROL_MASK | GDK_ALT_MASK | GDK_SHIFT_MASK)) == 0) {
                    gtk_widget_set_visible(state->bar, !gtk_widget_get_visible(state->bar));
                    return TRUE;
                }
                return FALSE;
            }),
        state, [](gpointer data, GClosure*) { delete static_cast<State*>(data); }, GConnectFlags(0));
    g_signal_connect(keys, "key-released",
        G_CALLBACK(+[](GtkEventControllerKey*, guint keyval, guint, GdkModifierType, gpointer data) {
            auto* state = static_cast<State*>(data);
            if ((keyval == GDK_KEY_Alt_L || keyval == GDK_KEY_Alt_R) && state->loneAlt) {
                gtk_widget_set_visible(state->bar, !gtk_widget_get_visible(state->bar));
            }
            state->loneAlt = false;
        }),
        state);
    gtk_widget_add_controller(GTK_WIDGET(window), keys);
}

} // namespace velder::MenuBar
