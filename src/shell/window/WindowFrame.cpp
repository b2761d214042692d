#include "shell/window/WindowFrame.h"

#include "core/WindowSession.h"
#include "shell/desktop/X11Placement.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace velder {

WindowFrame::WindowFrame(GtkWindow* window, Rect initial, bool hasOwnPlacement)
    : m_window(window)
    , m_hasOwnPlacement(hasOwnPlacement)
    , m_normalFrame(initial)
{
    gtk_window_set_default_size(window, static_cast<int>(initial.width), static_cast<int>(initial.height));
    X11Placement::placeWhenRealized(window, static_cast<int>(initial.x), static_cast<int>(initial.y));
    g_signal_connect(window, "notify::default-width", G_CALLBACK(onSizeChanged), this);
    g_signal_connect(window, "notify::default-height", G_CALLBACK(onSizeChanged), this);
    g_signal_connect(window, "map", G_CALLBACK(onMapped), this);
}

void WindowFrame::onMapped(GtkWidget*, gpointer self)
{
    // Seen once the window is on the screen where its placement (and any window manager) put it.
    auto* frame = static_cast<WindowFrame*>(self);
    frame->m_firstSeenAt = X11Placement::position(frame->m_window);
}

WindowFrame::~WindowFrame()
{
    g_signal_handlers_disconnect_by_data(m_window, this);
}

Rect WindowFrame::frame() const
{
    Rect result = m_normalFrame;
    // The default size is the window's size in its normal state: GTK keeps it through a maximise or full
    // screen, and updates it when the user resizes.
    int width = 0;
    int height = 0;
    gtk_window_get_default_size(m_window, &width, &height);
    if (width <= 0 || height <= 0) {
        width = gtk_widget_get_width(GTK_WIDGET(m_window));
        height = gtk_widget_get_height(GTK_WIDGET(m_window));
    }
    result.width = width;
    result.height = height;
    if (auto position = X11Placement::position(m_window)) {
        result.x = position->first;
        result.y = position->second;
    } else if (!X11Placement::isAvailable()) {
        result.x = 0; // the compositor places windows: positions are neither read nor saved
        result.y = 0;
    }
    return result;
}

bool WindowFrame::isZoomed() const
{
    return gtk_window_is_maximized(m_window);
}

bool WindowFrame::isFullScreen() const
{
    return gtk_window_is_fullscreen(m_window);
}

bool WindowFrame::isMinimized() const
{
    GdkSurface* surface = gtk_native_get_surface(GTK_NATIVE(m_window));
    return surface && GDK_IS_TOPLEVEL(surface)
        && (gdk_toplevel_get_state(GDK_TOPLEVEL(surface)) & GDK_TOPLEVEL_STATE_MINIMIZED);
}

void WindowFrame::keepNormalFrame()
{
    if (!isZoomed() && !isFullScreen() && !isMinimized()) {
        m_normalFrame = frame();
    }
}

void WindowFrame::zoom()
{
    keepNormalFrame();
    gtk_window_maximize(m_window);
}

void WindowFrame::toggleZoom()
{
    if (isZoomed()) {
        gtk_window_unmaximize(m_window);
    } else {
        zoom();
    }
}

void WindowFrame::toggleFullScreen()
{
    if (isFullScreen()) {
        gtk_window_unfullscreen(m_window);
        return;
    }
    keepNormalFrame();
    gtk_window_fullscreen(m_window);
}

void WindowFrame::minimize()
{
    keepNormalFrame();
    gtk_window_minimize(m_window);
}

void WindowFrame::onSizeChanged(GObject*, GParamSpec*, gpointer self)
{
    static_cast<WindowFrame*>(self)->track();
}

void WindowFrame::track()
{
    // A size the user gave the window in its normal state is its own placement from then on.
    if (!isZoomed() && !isFullScreen() && !isMinimized() && gtk_widget_get_mapped(GTK_WIDGET(m_window))) {
        m_hasOwnPlacement = true;
        m_normalFrame = frame();
    }
}

void WindowFrame::writeTo(WindowSession& record) const
{
    // A window the user only moved is placed by the user too. GTK reports no moves, so the position is read,
    // and compared with where it was first seen, after the window manager had its say.
    auto position = X11Placement::position(m_window);
    if (position && !m_firstSeenAt) {
        m_firstSeenAt = position;
    }
    bool moved = position && position != m_firstSeenAt;
    if (m_hasOwnPlacement || moved) {
        Rect source = (isMinimized() || isZoomed() || isFullScreen()) ? m_normalFrame : frame();
        double values[]
            = { std::round(source.x), std::round(source.y), std::round(source.width), std::round(source.height) };
        bool fits = std::all_of(std::begin(values), std::end(values), [](double v) {
            return std::isfinite(v) && v >= static_cast<double>(std::numeric_limits<std::int64_t>::min())
                && v <= static_cast<double>(std::numeric_limits<std::int32_t>::max());
        });
        if (fits) {
            record.x = static_cast<std::int64_t>(values[0]);
            record.y = static_cast<std::int64_t>(values[1]);
            record.w = static_cast<std::int64_t>(values[2]);
            record.h = static_cast<std::int64_t>(values[3]);
        }
    }
    record.state = isZoomed() && !isFullScreen() ? WindowState::zoomed : WindowState::normal;
}

std::vector<Rect> WindowFrame::visibleFrames()
{
    return X11Placement::visibleFrames();
}

Rect WindowFrame::cascade() const
{
    Rect source = frame();
    return WindowPlacement::cascade(source, isZoomed(), WindowPlacement::screenOf(source, visibleFrames()));
}

} // namespace velder
