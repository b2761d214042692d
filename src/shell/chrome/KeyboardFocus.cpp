#include "shell/chrome/KeyboardFocus.h"

#include "core/Palette.h"
#include "core/Theme.h"
#include "shell/chrome/Drawing.h"

namespace velder::KeyboardFocus {

namespace {

using Activate = std::function<void()>;

gboolean keyPressed(GtkEventControllerKey*, guint keyval, guint, GdkModifierType state, gpointer data)
{
    bool plain = (state & (GDK_CONTROL_MASK | GDK_ALT_MASK | GDK_SHIFT_MASK)) == 0;
    switch (keyval) {
    case GDK_KEY_Return:
    case GDK_KEY_KP_Enter:
    case GDK_KEY_ISO_Enter:
    case GDK_KEY_space:
    case GDK_KEY_KP_Space:
        if (plain) {
            (*static_cast<Activate*>(data))();
            return TRUE;
        }
        return FALSE;
    default:
        return FALSE;
    }
}

constexpr const char* keyboardKey = "velder-focused-by-keyboard";

// The window's focus widget, whether or not the window is in front this moment.
bool isFocusWidget(GtkWidget* widget)
{
    GtkRoot* root = gtk_widget_get_root(widget);
    return root && gtk_root_get_focus(root) == widget;
}

void redraw(GtkEventControllerFocus* focus, gpointer)
{
    gtk_widget_queue_draw(gtk_event_controller_get_widget(GTK_EVENT_CONTROLLER(focus)));
}

void left(GtkEventControllerFocus* focus, gpointer)
{
    GtkWidget* widget = gtk_event_controller_get_widget(GTK_EVENT_CONTROLLER(focus));
    // The window going to the background takes the focus for a while, not from this widget.
    if (!isFocusWidget(widget)) {
        g_object_set_data(G_OBJECT(widget), keyboardKey, nullptr);
    }
    gtk_widget_queue_draw(widget);
}

} // namespace

void enable(GtkWidget* widget, std::function<void()> activate)
{
    gtk_widget_set_focusable(widget, TRUE);
    gtk_widget_set_focus_on_click(widget, FALSE);

    GtkEventController* keys = gtk_event_controller_key_new();
    g_signal_connect_data(
        keys, "key-pressed", G_CALLBACK(keyPressed), new Activate(std::move(activate)),
        [](gpointer data, GClosure*) { delete static_cast<Activate*>(data); }, GConnectFlags(0));
    gtk_widget_add_controller(widget, keys);

    GtkEventController* focus = gtk_event_controller_focus_new();
    g_signal_connect(focus, "enter", G_CALLBACK(redraw), nullptr);
    g_signal_connect(focus, "leave", G_CALLBACK(left), nullptr);
    gtk_widget_add_controller(widget, focus);
}

void grabByKeyboard(GtkWidget* widget)
{
    if (gtk_widget_grab_focus(widget)) {
        g_object_set_data(G_OBJECT(widget), keyboardKey, GINT_TO_POINTER(1));
        gtk_widget_queue_draw(widget);
    }
}

bool showsRing(GtkWidget* widget)
{
    if (!isFocusWidget(widget)) {
        return false;
    }
    GtkRoot* root = gtk_widget_get_root(widget);
    bool visible = GTK_IS_WINDOW(root) && gtk_window_get_focus_visible(GTK_WINDOW(root));
    return visible || g_object_get_data(G_OBJECT(widget), keyboardKey);
}

Color ringColor(Color background)
{
    return Theme::readable(Palette::highlightColor(), background);
}

void drawRing(GtkSnapshot* snapshot, GtkWidget* widget, Color background, double inset, double radius)
{
    if (showsRing(widget)) {
        Drawing::strokeRounded(
            snapshot, ringColor(background), Drawing::inset(Drawing::bounds(widget), inset + 1, inset + 1), radius, 2);
    }
}

} // namespace velder::KeyboardFocus
