#include "WidgetTestSupport.h"

#include "core/Notification.h"
#include "core/NotificationCenter.h"
#include "core/Theme.h"
#include "core/Vault.h"

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <ostream>

// Last: X11's macros (Bool, None ...) would clash with the headers above.
#include <X11/Xutil.h>
#include <gdk/x11/gdkx.h>

namespace velder::test {

std::ostream& operator<<(std::ostream& out, const Pixel& pixel)
{
    return out << "rgb(" << pixel.red << "," << pixel.green << "," << pixel.blue << ")";
}

Rendering::Rendering(int width, int height, std::vector<unsigned char> bgra)
    : m_width(width)
    , m_height(height)
    , m_bgra(std::move(bgra))
{
}

Pixel Rendering::at(int x, int y) const
{
    if (x < 0 || y < 0 || x >= m_width || y >= m_height) {
        ADD_FAILURE() << "pixel " << x << "," << y << " lies outside the " << m_width << "x" << m_height
                      << " rendering";
        return {};
    }
    const unsigned char* p = &m_bgra[(static_cast<size_t>(y) * m_width + x) * 4];
    return { p[2], p[1], p[0] };
}

static int byte(double component)
{
    return static_cast<int>(std::lround(component * 255));
}

static int distance(const Pixel& pixel, Color color)
{
    return std::abs(pixel.red - byte(color.red)) + std::abs(pixel.green - byte(color.green))
        + std::abs(pixel.blue - byte(color.blue));
}

Pixel Rendering::farthestFrom(Color from, int x, int y, int width, int height) const
{
    Pixel best = at(x, y);
    for (int row = y; row < y + height; ++row) {
        for (int column = x; column < x + width; ++column) {
            Pixel pixel = at(column, row);
            if (distance(pixel, from) > distance(best, from)) {
                best = pixel;
            }
        }
    }
    return best;
}

int Rendering::countNear(Color color, int tolerance, int x, int y, int width, int height) const
{
    int count = 0;
    for (int row = y; row < y + height; ++row) {
        for (int column = x; column < x + width; ++column) {
            count += near(at(column, row), color, tolerance);
        }
    }
    return count;
}

bool near(const Pixel& pixel, Color color, int tolerance)
{
    return std::abs(pixel.red - byte(color.red)) <= tolerance && std::abs(pixel.green - byte(color.green)) <= tolerance
        && std::abs(pixel.blue - byte(color.blue)) <= tolerance;
}

::testing::AssertionResult pixelIs(const Pixel& pixel, Color color, int tolerance)
{
    if (near(pixel, color, tolerance)) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << pixel << " is not within " << tolerance << " of rgb(" << byte(color.red)
                                         << "," << byte(color.green) << "," << byte(color.blue) << ")";
}

Color rgb(int red, int green, int blue)
{
    return { red / 255.0, green / 255.0, blue / 255.0, 1 };
}

void WidgetTest::SetUp()
{
    static bool started = [] {
        gtk_init();
        // The chrome is always dark, whatever the desktop prefers.
        g_object_set(gtk_settings_get_default(), "gtk-application-prefer-dark-theme", TRUE, nullptr);
        return true;
    }();
    ASSERT_TRUE(started);
    m_profile = std::make_unique<TestProfile>();
    m_vault = std::make_shared<Vault>(m_profile->root().file("vault.bin"), testDataKey());
    Vault::setShared(m_vault);
}

void WidgetTest::TearDown()
{
    for (GtkWindow* window : m_windows) {
        gtk_window_destroy(window);
    }
    m_windows.clear();
    drain();
}

void WidgetTest::setColors(const std::string& text, const std::string& highlight, const std::string& passive,
    const std::string& field, const std::string& border)
{
    m_vault->update([&](VaultData& data) {
        data.settings.textColor = text;
        data.settings.highlightColor = highlight;
        data.settings.passiveColor = passive;
        data.settings.fieldColor = field;
        data.settings.borderColor = border;
    });
    NotificationCenter::defaultCenter().post(Theme::didChangeNotification);
}

GtkWindow* WidgetTest::host(GtkWidget* widget, int width, int height)
{
    return hostIn(widget, widget, width, height);
}

GtkWindow* WidgetTest::hostIn(GtkWidget* container, GtkWidget* child, int width, int height)
{
    GtkWidget* window = gtk_window_new();
    gtk_window_set_decorated(GTK_WINDOW(window), FALSE);
    // The tests drive the widgets' entry points themselves; the real pointer must not reach them too.
    gtk_widget_set_can_target(window, FALSE);
    gtk_window_set_default_size(GTK_WINDOW(window), width, height);
    gtk_window_set_child(GTK_WINDOW(window), container);
    gtk_window_present(GTK_WINDOW(window));
    m_windows.push_back(GTK_WINDOW(window));
    bool laidOut = runMainLoopUntil([&] {
        return gtk_widget_get_mapped(child) && gtk_widget_get_width(container) == width
            && gtk_widget_get_height(container) == height;
    });
    EXPECT_TRUE(laidOut) << "the window never laid its child out at " << width << "x" << height << " (got "
                         << gtk_widget_get_width(container) << "x" << gtk_widget_get_height(container) << ")";
    return GTK_WINDOW(window);
}

GtkWidget* WidgetTest::hostAboveButton(GtkWidget* widget, int width, int height)
{
    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    GtkWidget* button = gtk_button_new_with_label("Elsewhere");
    gtk_box_append(GTK_BOX(box), widget);
    gtk_box_append(GTK_BOX(box), button);
    hostIn(box, widget, width, height);
    // A window focuses its first focusable widget when it maps.
    gtk_widget_grab_focus(button);
    return button;
}

void WidgetTest::settle(GtkWidget* widget)
{
    // Layout runs in the frame after a change; two frame ticks mean that one full frame has passed.
    int ticks = 0;
    guint id = gtk_widget_add_tick_callback(
        widget,
        [](GtkWidget*, GdkFrameClock*, gpointer data) -> gboolean {
            ++*static_cast<int*>(data);
            return G_SOURCE_CONTINUE;
        },
        &ticks, nullptr);
    bool passed = runMainLoopUntil([&] { return ticks >= 2; });
    gtk_widget_remove_tick_callback(widget, id);
    EXPECT_TRUE(passed) << "no frame passed";
    drain();
}

namespace {

struct PendingRendering {
    GtkWidget* widget;
    Color background;
    GskRenderNode* node = nullptr;
    int width = 0;
    int height = 0;
};

// Right after a frame was painted, every widget holds the picture it just drew; a moment later a timer
// (the update slot's spinner) may already have thrown it away for the next frame.
void takePicture(GdkFrameClock*, gpointer data)
{
    auto* pending = static_cast<PendingRendering*>(data);
    if (pending->node) {
        return;
    }
    pending->width = gtk_widget_get_width(pending->widget);
    pending->height = gtk_widget_get_height(pending->widget);
    GtkSnapshot* snapshot = gtk_snapshot_new();
    GdkRGBA fill = { static_cast<float>(pending->background.red), static_cast<float>(pending->background.green),
        static_cast<float>(pending->background.blue), 1 };
    graphene_rect_t area
        = GRAPHENE_RECT_INIT(0, 0, static_cast<float>(pending->width), static_cast<float>(pending->height));
    gtk_snapshot_append_color(snapshot, &fill, &area);
    GdkPaintable* paintable = gtk_widget_paintable_new(pending->widget);
    gdk_paintable_snapshot(paintable, snapshot, pending->width, pending->height);
    g_object_unref(paintable);
    pending->node = gtk_snapshot_free_to_node(snapshot);
}

} // namespace

Rendering WidgetTest::render(GtkWidget* widget, Color background)
{
    PendingRendering pending { widget, background };
    GdkFrameClock* clock = gtk_widget_get_frame_clock(widget);
    if (!clock) {
        ADD_FAILURE() << "the widget isn't in a window";
        return Rendering(0, 0, {});
    }
    gulong handler = g_signal_connect(clock, "after-paint", G_CALLBACK(takePicture), &pending);
    gtk_widget_queue_draw(widget);
    bool painted = runMainLoopUntil([&] { return pending.node != nullptr; }, std::chrono::seconds(5));
    g_signal_handler_disconnect(clock, handler);
    if (!painted) {
        ADD_FAILURE() << "the window never painted";
        return Rendering(0, 0, {});
    }
    int width = pending.width;
    int height = pending.height;
    graphene_rect_t area = GRAPHENE_RECT_INIT(0, 0, static_cast<float>(width), static_cast<float>(height));
    GskRenderer* renderer = gsk_cairo_renderer_new();
    GError* error = nullptr;
    if (!gsk_renderer_realize(renderer, nullptr, &error)) {
        ADD_FAILURE() << "cannot realize a renderer: " << (error ? error->message : "?");
        g_clear_error(&error);
    }
    GdkTexture* texture = gsk_renderer_render_texture(renderer, pending.node, &area);
    std::vector<unsigned char> bgra(static_cast<size_t>(width) * height * 4);
    gdk_texture_download(texture, bgra.data(), static_cast<size_t>(width) * 4);
    g_object_unref(texture);
    gsk_render_node_unref(pending.node);
    gsk_renderer_unrealize(renderer);
    g_object_unref(renderer);
    return Rendering(width, height, std::move(bgra));
}

Rendering screenshotWindow(GtkWindow* window, const std::string& pngPath)
{
    GdkSurface* surface = gtk_native_get_surface(GTK_NATIVE(window));
    if (!surface || !GDK_IS_X11_SURFACE(surface)) {
        ADD_FAILURE() << "screenshots need an X11 window";
        return Rendering(0, 0, {});
    }
    // Let the window and the page paint what they have.
    runMainLoopFor(std::chrono::milliseconds(300));
    Display* display = gdk_x11_display_get_xdisplay(gdk_surface_get_display(surface));
    XSync(display, False);
    XWindowAttributes attributes {};
    Window xid = gdk_x11_surface_get_xid(surface);
    XGetWindowAttributes(display, xid, &attributes);
    XImage* image = XGetImage(display, xid, 0, 0, attributes.width, attributes.height, AllPlanes, ZPixmap);
    if (!image) {
        ADD_FAILURE() << "the X server gave no image";
        return Rendering(0, 0, {});
    }
    int width = attributes.width;
    int height = attributes.height;
    std::vector<unsigned char> bgra(static_cast<size_t>(width) * height * 4);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            unsigned long pixel = XGetPixel(image, x, y);
            unsigned char* out = &bgra[(static_cast<size_t>(y) * width + x) * 4];
            out[0] = pixel & 0xff;
            out[1] = (pixel >> 8) & 0xff;
            out[2] = (pixel >> 16) & 0xff;
            out[3] = 0xff;
        }
    }
    XDestroyImage(image);
    GBytes* bytes = g_bytes_new(bgra.data(), bgra.size());
    GdkTexture* texture
        = gdk_memory_texture_new(width, height, GDK_MEMORY_B8G8R8A8, bytes, static_cast<gsize>(width) * 4);
    g_bytes_unref(bytes);
    EXPECT_TRUE(gdk_texture_save_to_png(texture, pngPath.c_str())) << "cannot write " << pngPath;
    g_object_unref(texture);
    return Rendering(width, height, std::move(bgra));
}

void WidgetTest::drain()
{
    for (int i = 0; i < 1000 && g_main_context_iteration(nullptr, FALSE); ++i) { }
}

std::vector<MenuItem> itemsOf(GMenuModel* model, bool intoSubmenus)
{
    std::vector<MenuItem> items;
    for (int i = 0; i < g_menu_model_get_n_items(model); ++i) {
        GMenuModel* inner = g_menu_model_get_item_link(model, i, G_MENU_LINK_SECTION);
        if (!inner && intoSubmenus) {
            inner = g_menu_model_get_item_link(model, i, G_MENU_LINK_SUBMENU);
        }
        if (inner) {
            auto innerItems = itemsOf(inner, intoSubmenus);
            items.insert(items.end(), innerItems.begin(), innerItems.end());
            g_object_unref(inner);
            continue;
        }
        MenuItem& item = items.emplace_back();
        for (auto [attribute, field] : { std::pair { G_MENU_ATTRIBUTE_LABEL, &MenuItem::label },
                 std::pair { G_MENU_ATTRIBUTE_ACTION, &MenuItem::action }, std::pair { "accel", &MenuItem::accel } }) {
            char* text = nullptr;
            if (g_menu_model_get_item_attribute(model, i, attribute, "s", &text)) {
                item.*field = text;
                g_free(text);
            }
        }
    }
    return items;
}

bool actionState(GActionGroup* actions, const char* name)
{
    GVariant* state = g_action_group_get_action_state(actions, name);
    bool on = state && g_variant_get_boolean(state);
    if (state) {
        g_variant_unref(state);
    }
    return on;
}

} // namespace velder::test
