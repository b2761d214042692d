#include "shell/desktop/X11Placement.h"

#include <gdk/x11/gdkx.h>
#include <gtk/gtk.h>

namespace velder::X11Placement {

namespace {

GdkSurface* surfaceOf(GtkWindow* window)
{
    return gtk_widget_get_realized(GTK_WIDGET(window)) ? gtk_native_get_surface(GTK_NATIVE(window)) : nullptr;
}

void move(GtkWindow* window, int x, int y)
{
    GdkSurface* surface = surfaceOf(window);
    if (!surface || !GDK_IS_X11_SURFACE(surface)) {
        return;
    }
    Display* display = gdk_x11_display_get_xdisplay(gdk_surface_get_display(surface));
    XMoveWindow(display, gdk_x11_surface_get_xid(surface), x, y);
    XFlush(display);
}

struct Point {
    int x;
    int y;
};

void moveOnRealize(GtkWidget* widget, gpointer data)
{
    auto* where = static_cast<Point*>(data);
    move(GTK_WINDOW(widget), where->x, where->y);
}

} // namespace

bool isAvailable()
{
    GdkDisplay* display = gdk_display_get_default();
    return display && GDK_IS_X11_DISPLAY(display);
}

std::optional<std::pair<int, int>> position(GtkWindow* window)
{
    GdkSurface* surface = surfaceOf(window);
    if (!surface || !GDK_IS_X11_SURFACE(surface)) {
        return std::nullopt;
    }
    Display* display = gdk_x11_display_get_xdisplay(gdk_surface_get_display(surface));
    Window child = 0;
    int x = 0;
    int y = 0;
    if (!XTranslateCoordinates(
            display, gdk_x11_surface_get_xid(surface), DefaultRootWindow(display), 0, 0, &x, &y, &child)) {
        return std::nullopt;
    }
    return std::make_pair(x, y);
}

void placeWhenRealized(GtkWindow* window, int x, int y)
{
    if (!isAvailable()) {
        return;
    }
    if (gtk_widget_get_realized(GTK_WIDGET(window))) {
        move(window, x, y);
        return;
    }
    auto* target = new Point { x, y };
    g_signal_connect_data(
        window, "realize", G_CALLBACK(moveOnRealize), target,
        [](gpointer data, GClosure*) { delete static_cast<Point*>(data); }, GConnectFlags(0));
}

std::vector<Rect> visibleFrames()
{
    std::vector<Rect> frames;
    GdkDisplay* display = gdk_display_get_default();
    if (!display) {
        return frames;
    }
    bool x11 = GDK_IS_X11_DISPLAY(display);
    GListModel* monitors = gdk_display_get_monitors(display);
    for (guint i = 0; i < g_list_model_get_n_items(monitors); ++i) {
        auto* monitor = GDK_MONITOR(g_list_model_get_item(monitors, i));
        GdkRectangle area;
        if (x11) {
            gdk_x11_monitor_get_workarea(monitor, &area);
        } else {
            gdk_monitor_get_geometry(monitor, &area);
        }
        frames.push_back({ static_cast<double>(area.x), static_cast<double>(area.y), static_cast<double>(area.width),
            static_cast<double>(area.height) });
        g_object_unref(monitor);
    }
    return frames;
}

} // namespace velder::X11Placement
