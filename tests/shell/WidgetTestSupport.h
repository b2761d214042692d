#pragma once

#include "core/AppSettings.h"
#include "core/Color.h"
#include "support/MainLoop.h"
#include "support/TestSupport.h"

#include <functional>
#include <gtest/gtest.h>
#include <gtk/gtk.h>
#include <memory>
#include <string>
#include <vector>

namespace velder {
class Vault;
}

namespace velder::test {

// One pixel of a rendering, 8-bit components. Renderings are opaque, so there is no alpha to keep.
struct Pixel {
    int red = 0;
    int green = 0;
    int blue = 0;
};

std::ostream& operator<<(std::ostream& out, const Pixel& pixel);

// A widget rendered by GTK's own renderer into memory, one pixel per logical pixel, over an opaque
// background.
class Rendering {
public:
    Rendering(int width, int height, std::vector<unsigned char> bgra);
    int width() const { return m_width; }
    Pixel at(int x, int y) const;
    // The pixel of the area farthest from `from` (the text or symbol drawn on a plain background).
    Pixel farthestFrom(Color from, int x, int y, int width, int height) const;
    // How many pixels of the area lie within `tolerance` of `color` in every component.
    int countNear(Color color, int tolerance, int x, int y, int width, int height) const;

private:
    int m_width;
    int m_height;
    std::vector<unsigned char> m_bgra;
};

// What the X server shows of a window, pages included, written as a PNG (X11 displays only).
Rendering screenshotWindow(GtkWindow* window, const std::string& pngPath);

// Whether every component of the pixel lies within `tolerance` of the colour's (alpha ignored).
bool near(const Pixel& pixel, Color color, int tolerance = 2);
::testing::AssertionResult pixelIs(const Pixel& pixel, Color color, int tolerance = 2);

// A colour from 8-bit components, for expectations worked out by hand.
Color rgb(int red, int green, int blue);

// An item of a menu model, as a menu shows it.
struct MenuItem {
    std::string label;
    std::string action;
    std::string accel;
};

// The items of a menu model in order, sections flattened; with `intoSubmenus`, submenus' items instead of them.
std::vector<MenuItem> itemsOf(GMenuModel* model, bool intoSubmenus = false);

// The boolean state of a stateful action (a checked menu item).
bool actionState(GActionGroup* actions, const char* name);

// Each test of the chrome runs in a profile of its own, with a vault of its own holding its colours, and a
// window that hosts the widget under test.
class WidgetTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Writes the five colour settings (swatch keys) and announces the change as the settings page does.
    void setColors(const std::string& text, const std::string& highlight, const std::string& passive,
        const std::string& field, const std::string& border);

    // Shows `widget` alone in a window, `width` by `height`, and waits until it is laid out at that size.
    GtkWindow* host(GtkWidget* widget, int width, int height);
    // Shows `child` inside `container` in a window, and waits until `child` is laid out.
    GtkWindow* hostIn(GtkWidget* container, GtkWidget* child, int width, int height);
    // Shows `widget` in a window above a button, gives the button the focus and returns it: the widget
    // starts without the focus and has somewhere to lose it to.
    GtkWidget* hostAboveButton(GtkWidget* widget, int width, int height);

    // Lets a frame pass, so that what a change queued is laid out.
    void settle(GtkWidget* widget);
    // Renders the widget as the next frame paints it, over `background`.
    Rendering render(GtkWidget* widget, Color background = Color::fromHex(0xFF00FF));

    // Runs whatever the main loop has ready.
    void drain();

    std::unique_ptr<TestProfile> m_profile;
    std::shared_ptr<Vault> m_vault;
    std::vector<GtkWindow*> m_windows;
};

} // namespace velder::test
