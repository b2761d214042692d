#include "shell/chrome/PopupMenu.h"

#include <utility>

namespace velder::PopupMenu {

namespace {

// One menu per anchor, kept for the anchor's life and given a new model at each popup, as GTK's own
// widgets do: a popover taken down right after it closed can leave the window pointing at its surface.
struct Popup {
    std::function<void()> onClosed;
};

constexpr const char* popupKey = "velder-popup-menu";

void closed(GtkPopover*, gpointer data)
{
    auto onClosed = std::exchange(static_cast<Popup*>(data)->onClosed, nullptr);
    if (onClosed) {
        onClosed();
    }
}

void freePopup(gpointer data, GClosure*)
{
    delete static_cast<Popup*>(data);
}

GtkPopover* menuOf(GtkWidget* anchor)
{
    return static_cast<GtkPopover*>(g_object_get_data(G_OBJECT(anchor), popupKey));
}

} // namespace

GtkPopover* openMenu(GtkWidget* anchor)
{
    GtkPopover* menu = menuOf(anchor);
    return menu && gtk_widget_get_visible(GTK_WIDGET(menu)) ? menu : nullptr;
}

void popup(GtkWidget* anchor, GMenuModel* model, double x, double y, std::function<void()> onClosed)
{
    GtkPopover* menu = menuOf(anchor);
    if (menu && gtk_widget_get_visible(GTK_WIDGET(menu))) {
        gtk_popover_popdown(menu);
    }
    if (!menu) {
        menu = GTK_POPOVER(gtk_popover_menu_new_from_model(nullptr));
        gtk_widget_set_parent(GTK_WIDGET(menu), anchor);
        gtk_popover_set_has_arrow(menu, FALSE);
        gtk_popover_set_position(menu, GTK_POS_BOTTOM);
        // Start alignment puts the menu's left edge on the rectangle's; the menu hangs from its bottom edge.
        gtk_widget_set_halign(GTK_WIDGET(menu), GTK_ALIGN_START);
        auto* state = new Popup;
        g_signal_connect_data(menu, "closed", G_CALLBACK(closed), state, freePopup, GConnectFlags(0));
        g_object_set_data(G_OBJECT(anchor), popupKey, menu);
        g_object_set_data(G_OBJECT(menu), popupKey, state);
    }
    static_cast<Popup*>(g_object_get_data(G_OBJECT(menu), popupKey))->onClosed = std::move(onClosed);
    gtk_popover_menu_set_menu_model(GTK_POPOVER_MENU(menu), model);
    GdkRectangle point = { static_cast<int>(x), static_cast<int>(y) - 1, 1, 1 };
    gtk_popover_set_pointing_to(menu, &point);
    gtk_popover_popup(menu);
}

void presentAll(GtkWidget* anchor)
{
    if (GtkPopover* menu = menuOf(anchor)) {
        gtk_popover_present(menu);
    }
}

void unparent(GtkWidget* anchor)
{
    if (GtkPopover* menu = menuOf(anchor)) {
        g_object_set_data(G_OBJECT(anchor), popupKey, nullptr);
        gtk_widget_unparent(GTK_WIDGET(menu));
    }
}

} // namespace velder::PopupMenu
