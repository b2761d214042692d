#include "shell/window/MenuBar.h"

#include "glib/MainLoop.h"
#include "shell/chrome/MenuBuilder.h"
#include "shell/window/UpdateMenuItem.h"

#include <cstring>
#include <memory>

namespace velder::MenuBar {

GMenuModel* mainMenu()
{
    using Kind = BrowserAction::Kind;
    MenuBuilder bar;

    MenuBuilder velder(true);
    velder.section().command("about");
    UpdateMenuItem::appendTo(velder);
    velder.section().command(Kind::settings);
    velder.section().command("quit");
    bar.submenu("_Velder", velder);

    MenuBuilder file(true);
    file.section().command(Kind::newWindow).command(Kind::newPrivateWindow).command(Kind::newTab);
    file.section().command(Kind::closeTab).command(Kind::closeWindow).command(Kind::reopenClosedTab);
    bar.submenu("_File", file);

    MenuBuilder edit(true);
    edit.section().command("undo").command("redo");
    edit.section().command("cut").command("copy").command("paste").command("selectAll");
    MenuBuilder find(true);
    find.command(Kind::find).command(Kind::findNext).command(Kind::findPrev);
    edit.section().submenu("Find", find);
    bar.submenu("_Edit", edit);

    MenuBuilder view(true);
    view.section().command(Kind::reload).command(Kind::hardReload).command(Kind::stop);
    view.section().command(Kind::zoomIn).command(Kind::zoomOut).command(Kind::zoomReset);
    view.section().command("toggleFullScreen");
    MenuBuilder developer(true);
    developer.command(Kind::devTools);
    view.section().submenu("Developer", developer);
    bar.submenu("V_iew", view);

    MenuBuilder history(true);
    history.section().command(Kind::back).command(Kind::forward).command(Kind::home);
    history.section().command(Kind::history);
    bar.submenu("Hi_story", history);

    MenuBuilder window(true);
    window.section().command("minimize").command("zoom");
    window.section().command(Kind::nextTab).command(Kind::prevTab);
    bar.submenu("_Window", window);

    MenuBuilder help(true);
    help.command("about", "Velder Help");
    bar.submenu("_Help", help);

    return G_MENU_MODEL(g_object_ref(bar.model()));
}

GtkWidget* createMenuBarWidget()
{
    GMenuModel* model = mainMenu();
    GtkWidget* bar = gtk_popover_menu_bar_new_from_model(model);
    g_object_unref(model);
    return bar;
}

namespace {

// The menu bar by the keyboard: F10 or a lone Alt show it with the focus on its first menu, and hide it
// again with the focus given back; Alt and a menu's underlined letter open that menu; with a menu open,
// Left and Right open the neighbouring one; Down opens the menu whose title has the focus; Escape, once no
// menu is open, hides the bar.
class RevealKeys {
public:
    RevealKeys(GtkWindow* window, GtkWidget* bar)
        : m_window(window)
        , m_bar(bar)
    {
        g_weak_ref_init(&m_returnFocus, nullptr);
    }
    ~RevealKeys() { g_weak_ref_clear(&m_returnFocus); }

    bool pressed(guint keyval, GdkModifierType modifiers)
    {
        bool plain = (modifiers & (GDK_CONTROL_MASK | GDK_ALT_MASK | GDK_SHIFT_MASK)) == 0;
        bool isAlt = keyval == GDK_KEY_Alt_L || keyval == GDK_KEY_Alt_R;
        m_loneAlt = isAlt && (modifiers & (GDK_CONTROL_MASK | GDK_SHIFT_MASK)) == 0;
        if (keyval == GDK_KEY_F10 && plain) {
            isShown() ? hide() : show(firstItem());
            return true;
        }
        if ((modifiers & GDK_ALT_MASK) && !(modifiers & GDK_CONTROL_MASK) && !isAlt) {
            if (GtkWidget* item = itemWithMnemonic(gdk_keyval_to_lower(keyval))) {
                show(item);
                gtk_widget_activate(item);
                return true;
            }
            return false;
        }
        if (!isShown() || !plain) {
            return false;
        }
        GtkWidget* open = openItem();
        switch (keyval) {
        case GDK_KEY_Left:
        case GDK_KEY_Right: {
            GtkWidget* from = open ? open : focusedItem();
            if (!from) {
                return false;
            }
            GtkWidget* next
                = keyval == GDK_KEY_Right ? gtk_widget_get_next_sibling(from) : gtk_widget_get_prev_sibling(from);
            if (!next) {
                next = keyval == GDK_KEY_Right ? firstItem() : gtk_widget_get_last_child(m_bar);
            }
            // With a menu open its neighbour opens; on the titles alone the focus moves.
            if (open) {
                gtk_widget_activate(next);
            } else {
                gtk_widget_grab_focus(next);
            }
            return true;
        }
        case GDK_KEY_Down:
        case GDK_KEY_KP_Down:
            if (!open && focusedItem()) {
                gtk_widget_activate(focusedItem());
                return true;
            }
            return false;
        case GDK_KEY_Escape:
            // An open menu closes first (its own Escape), then the bar goes.
            if (!open) {
                hide();
                return true;
            }
            return false;
        default:
            return false;
        }
    }

    void released(guint keyval)
    {
        if ((keyval == GDK_KEY_Alt_L || keyval == GDK_KEY_Alt_R) && m_loneAlt) {
            isShown() ? hide() : show(firstItem());
        }
        m_loneAlt = false;
    }

    void hideUnlessAMenuIsOpen()
    {
        if (isShown() && !openItem()) {
            hide();
        }
    }

private:
    bool isShown() const { return gtk_widget_get_visible(m_bar); }
    GtkWidget* firstItem() const { return gtk_widget_get_first_child(m_bar); }

    void show(GtkWidget* focus)
    {
        if (!isShown()) {
            g_weak_ref_set(&m_returnFocus, gtk_window_get_focus(m_window));
            gtk_widget_set_visible(m_bar, true);
        }
        if (focus) {
            gtk_widget_grab_focus(focus);
        }
    }

    void hide()
    {
        gtk_widget_set_visible(m_bar, false);
        if (auto* focus = static_cast<GtkWidget*>(g_weak_ref_get(&m_returnFocus))) {
            gtk_widget_grab_focus(focus);
            g_object_unref(focus);
        }
        g_weak_ref_set(&m_returnFocus, nullptr);
    }

    // The menu title that holds the window's focus, if one does.
    GtkWidget* focusedItem() const
    {
        GtkWidget* focus = gtk_window_get_focus(m_window);
        return focus && gtk_widget_get_parent(focus) == m_bar ? focus : nullptr;
    }

    // The title whose menu is open: its popover, the title's last child, is mapped.
    GtkWidget* openItem() const
    {
        for (GtkWidget* item = firstItem(); item; item = gtk_widget_get_next_sibling(item)) {
            GtkWidget* popover = gtk_widget_get_last_child(item);
            if (GTK_IS_POPOVER(popover) && gtk_widget_get_mapped(popover)) {
                return item;
            }
        }
        return nullptr;
    }

    // The title whose label underlines this letter ("_File" for f).
    GtkWidget* itemWithMnemonic(guint keyval) const
    {
        gunichar wanted = gdk_keyval_to_unicode(keyval);
        for (GtkWidget* item = firstItem(); item && wanted; item = gtk_widget_get_next_sibling(item)) {
            GtkWidget* label = gtk_widget_get_first_child(item);
            const char* text = GTK_IS_LABEL(label) ? gtk_label_get_label(GTK_LABEL(label)) : nullptr;
            const char* mark = text ? std::strchr(text, '_') : nullptr;
            if (mark && g_unichar_tolower(g_utf8_get_char(mark + 1)) == wanted) {
                return item;
            }
        }
        return nullptr;
    }

    GtkWindow* m_window;
    GtkWidget* m_bar;
    GWeakRef m_returnFocus;
    bool m_loneAlt = false;
};

} // namespace

void attachRevealKeys(GtkWindow* window, GtkWidget* menuBar)
{
    using State = std::shared_ptr<RevealKeys>;
    GtkEventController* keys = gtk_event_controller_key_new();
    gtk_event_controller_set_propagation_phase(keys, GTK_PHASE_CAPTURE);
    auto* state = new State(std::make_shared<RevealKeys>(window, menuBar));
    // The controller owns the state: it goes with the window's controllers.
    g_object_set_data_full(
        G_OBJECT(keys), "velder-reveal-keys", state, [](gpointer data) { delete static_cast<State*>(data); });
    g_signal_connect(keys, "key-pressed",
        G_CALLBACK(+[](GtkEventControllerKey*, guint keyval, guint, GdkModifierType modifiers, gpointer data) {
            return gboolean((*static_cast<State*>(data))->pressed(keyval, modifiers));
        }),
        state);
    g_signal_connect(keys, "key-released",
        G_CALLBACK(+[](GtkEventControllerKey*, guint keyval, guint, GdkModifierType, gpointer data) {
            (*static_cast<State*>(data))->released(keyval);
        }),
        state);
    gtk_widget_add_controller(GTK_WIDGET(window), keys);

    // A menu closed (by Escape, a click elsewhere or a command it ran): once none is open any more, the bar
    // goes and the keyboard goes back. A menu that hands over to its neighbour leaves one open.
    for (GtkWidget* item = gtk_widget_get_first_child(menuBar); item; item = gtk_widget_get_next_sibling(item)) {
        if (GtkWidget* popover = gtk_widget_get_last_child(item); GTK_IS_POPOVER(popover)) {
            g_signal_connect_data(
                popover, "closed", G_CALLBACK(+[](GtkPopover*, gpointer data) {
                    MainLoop::post(*static_cast<std::weak_ptr<RevealKeys>*>(data),
                        [](RevealKeys& keys) { keys.hideUnlessAMenuIsOpen(); });
                }),
                new std::weak_ptr<RevealKeys>(*state),
                [](gpointer data, GClosure*) { delete static_cast<std::weak_ptr<RevealKeys>*>(data); },
                GConnectFlags(0));
        }
    }
}

} // namespace velder::MenuBar
