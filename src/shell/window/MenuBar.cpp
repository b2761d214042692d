#include "shell/window/MenuBar.h"

#include "shell/chrome/MenuBuilder.h"

namespace velder::MenuBar {

GMenuModel* mainMenu()
{
    using Kind = BrowserAction::Kind;
    MenuBuilder bar;

    MenuBuilder velder(true);
    // This build has no update feed: the item says so, and stays off.
    velder.section().command("about").command("checkForUpdates", "This build has no update channel.");
    velder.section().command(Kind::settings);
    velder.section().command("quit");
    bar.submenu("Velder", velder);

    MenuBuilder file(true);
    file.section().command(Kind::newWindow).command(Kind::newPrivateWindow).command(Kind::newTab);
    file.section().command(Kind::closeTab).command(Kind::closeWindow).command(Kind::reopenClosedTab);
    bar.submenu("File", file);

    MenuBuilder edit(true);
    edit.section().command("undo").command("redo");
    edit.section().command("cut").command("copy").command("paste").command("selectAll");
    MenuBuilder find(true);
    find.command(Kind::find).command(Kind::findNext).command(Kind::findPrev);
    edit.section().submenu("Find", find);
    bar.submenu("Edit", edit);

    MenuBuilder view(true);
    view.section().command(Kind::reload).command(Kind::hardReload).command(Kind::stop);
    view.section().command(Kind::zoomIn).command(Kind::zoomOut).command(Kind::zoomReset);
    view.section().command("toggleFullScreen");
    MenuBuilder developer(true);
    developer.command(Kind::devTools);
    view.section().submenu("Developer", developer);
    bar.submenu("View", view);

    MenuBuilder history(true);
    history.section().command(Kind::back).command(Kind::forward).command(Kind::home);
    history.section().command(Kind::history);
    bar.submenu("History", history);

    MenuBuilder window(true);
    window.section().command("minimize").command("zoom");
    window.section().command(Kind::nextTab).command(Kind::prevTab);
    bar.submenu("Window", window);

    MenuBuilder help(true);
    help.command("about", "Velder Help");
    bar.submenu("Help", help);

    return G_MENU_MODEL(g_object_ref(bar.model()));
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
