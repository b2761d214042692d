#include "shell/PopupMenu.h"

#include <utility>

namespace velder::PopupMenu {

namespace {

struct Closing {
    std::function<void()> onClosed;
};

gboolean unparentLater(gpointer data)
{
    auto* popover = static_cast<GtkWidget*>(data);
    if (gtk_widget_get_parent(popover)) {
        gtk_widget_unparent(popover);
    }
    return G_SOURCE_REMOVE;
}

void closed(GtkPopover* popover, gpointer data)
{
    auto* closing = static_cast<Closing*>(data);
    auto onClosed = std::exchange(closing->onClosed, nullptr);
    // The picked item's action is activated after the menu closes, and it is looked up through the
    // popover's ancestors: the popover stays in place until the main loop comes round.
    g_idle_add_full(G_PRIORITY_DEFAULT, unparentLater, g_object_ref(popover), g_object_unref);
    if (onClosed) {
        onClosed();
    }
}

void freeClosing(gpointer data, GClosure*)
{
    delete static_cast<Closing*>(data);
}

} // namespace

GtkPopover* openMenu(GtkWidget* anchor)
{
    for (GtkWidget* child = gtk_widget_get_first_child(anchor); child; child = gtk_widget_get_next_sibling(child)) {
        if (GTK_IS_POPOVER_MENU(child) && gtk_widget_get_visible(child)) {
            return GTK_POPOVER(child);
        }
    }
    return nullptr;
}

void popup(GtkWidget* anchor, GMenuModel* model, double x, double y, std::function<void()> onClosed)
{
    if (GtkPopover* open = openMenu(anchor)) {
        gtk_popover_popdown(open);
    }
    GtkWidget* popover = gtk_popover_menu_new_from_model(model);
    gtk_widget_set_parent(popover, anchor);
    gtk_popover_set_has_arrow(GTK_POPOVER(popover), FALSE);
    gtk_popover_set_position(GTK_POPOVER(popover), GTK_POS_BOTTOM);
    // Start alignment puts the menu's left edge on the rectangle's; the menu hangs from its bottom edge.
    gtk_widget_set_halign(popover, GTK_ALIGN_START);
    GdkRectangle point = { static_cast<int>(x), static_cast<int>(y) - 1, 1, 1 };
    gtk_popover_set_pointing_to(GTK_POPOVER(popover), &point);
    g_signal_connect_data(
        popover, "closed", G_CALLBACK(closed), new Closing { std::move(onClosed) }, freeClosing, GConnectFlags(0));
    gtk_popover_popup(GTK_POPOVER(popover));
}

void presentAll(GtkWidget* anchor)
{
    for (GtkWidget* child = gtk_widget_get_first_child(anchor); child; child = gtk_widget_get_next_sibling(child)) {
        if (GTK_IS_POPOVER(child)) {
            gtk_popover_present(GTK_POPOVER(child));
        }
    }
}

} // namespace velder::PopupMenu
