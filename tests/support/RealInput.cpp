#include "support/RealInput.h"

#include <X11/Xlib.h>
#include <dlfcn.h>
#include <functional>
#include <gdk/x11/gdkx.h>

namespace velder::test::RealInput {

namespace {

// libXtst has no development files here; its three calls are looked up at run time.
struct XTest {
    int (*fakeKey)(Display*, unsigned, Bool, unsigned long) = nullptr;
    int (*fakeButton)(Display*, unsigned, Bool, unsigned long) = nullptr;
    int (*fakeMotion)(Display*, int, int, int, unsigned long) = nullptr;
};

const XTest* xtest()
{
    static XTest functions;
    static bool loaded = [] {
        void* library = dlopen("libXtst.so.6", RTLD_NOW | RTLD_LOCAL);
        if (!library) {
            return false;
        }
        functions.fakeKey = reinterpret_cast<decltype(functions.fakeKey)>(dlsym(library, "XTestFakeKeyEvent"));
        functions.fakeButton = reinterpret_cast<decltype(functions.fakeButton)>(dlsym(library, "XTestFakeButtonEvent"));
        functions.fakeMotion = reinterpret_cast<decltype(functions.fakeMotion)>(dlsym(library, "XTestFakeMotionEvent"));
        return functions.fakeKey && functions.fakeButton && functions.fakeMotion;
    }();
    return loaded ? &functions : nullptr;
}

Display* xDisplay()
{
    GdkDisplay* display = gdk_display_get_default();
    return display && GDK_IS_X11_DISPLAY(display) ? gdk_x11_display_get_xdisplay(display) : nullptr;
}

void keyEvent(Display* display, unsigned keyval, bool press)
{
    KeyCode code = XKeysymToKeycode(display, keyval);
    if (code) {
        xtest()->fakeKey(display, code, press ? True : False, CurrentTime);
    }
}

// Presses and releases the key with the modifiers held, wherever the keyboard is.
void typeKey(Display* display, unsigned keyval, std::initializer_list<unsigned> modifiers)
{
    for (unsigned modifier : modifiers) {
        keyEvent(display, modifier, true);
    }
    keyEvent(display, keyval, true);
    keyEvent(display, keyval, false);
    for (unsigned modifier : modifiers) {
        keyEvent(display, modifier, false);
    }
    XSync(display, False);
}

// Raises the widget's toplevel X window, gives it the keyboard and brings the pointer onto (x, y) of the
// widget (other windows may have come and gone over the same place since the last test), then makes the
// gesture with the modifier keys held.
void gesture(GtkWidget* widget, double x, double y, std::initializer_list<unsigned> modifiers,
    const std::function<void(Display*)>& make)
{
    Display* display = xDisplay();
    if (!display || !xtest()) {
        return;
    }
    GtkNative* native = gtk_widget_get_native(widget);
    double inNativeX = 0;
    double inNativeY = 0;
    gtk_widget_translate_coordinates(widget, GTK_WIDGET(native), x, y, &inNativeX, &inNativeY);
    double surfaceX = 0;
    double surfaceY = 0;
    gtk_native_get_surface_transform(native, &surfaceX, &surfaceY);
    Window window = gdk_x11_surface_get_xid(gtk_native_get_surface(native));
    Window child = 0;
    int rootX = 0;
    int rootY = 0;
    XTranslateCoordinates(display, window, DefaultRootWindow(display), static_cast<int>(inNativeX + surfaceX),
        static_cast<int>(inNativeY + surfaceY), &rootX, &rootY, &child);
    XRaiseWindow(display, window);
    XSetInputFocus(display, window, RevertToParent, CurrentTime);
    // From elsewhere onto the point, so that the window sees the pointer arrive.
    xtest()->fakeMotion(display, -1, rootX > 10 ? rootX - 10 : rootX + 10, rootY, CurrentTime);
    xtest()->fakeMotion(display, -1, rootX, rootY, CurrentTime);
    XSync(display, False);
    for (unsigned modifier : modifiers) {
        keyEvent(display, modifier, true);
    }
    make(display);
    for (unsigned modifier : modifiers) {
        keyEvent(display, modifier, false);
    }
    XSync(display, False);
}

} // namespace

bool available()
{
    return xDisplay() && xtest();
}

void click(GtkWidget* widget, double x, double y, unsigned button, std::initializer_list<unsigned> modifiers)
{
    gesture(widget, x, y, modifiers, [&](Display* display) {
        xtest()->fakeButton(display, button, True, CurrentTime);
        xtest()->fakeButton(display, button, False, CurrentTime);
    });
}

void pressKeyInPlace(unsigned keyval, std::initializer_list<unsigned> modifiers)
{
    if (Display* display = xDisplay(); display && xtest()) {
        typeKey(display, keyval, modifiers);
    }
}

void movePointer(GtkWidget* widget, double x, double y)
{
    gesture(widget, x, y, {}, [](Display*) {});
}

void pressKey(GtkWidget* widget, unsigned keyval, std::initializer_list<unsigned> modifiers)
{
    gesture(widget, gtk_widget_get_width(widget) / 2.0, gtk_widget_get_height(widget) / 2.0, modifiers,
        [&](Display* display) {
            keyEvent(display, keyval, true);
            keyEvent(display, keyval, false);
        });
}

bool pressKeyOnScreen(int x, int y, unsigned keyval, std::initializer_list<unsigned> modifiers)
{
    Display* display = XOpenDisplay(nullptr);
    if (!display) {
        return false;
    }
    bool pressed = false;
    if (xtest()) {
        xtest()->fakeMotion(display, -1, x, y, CurrentTime);
        XSync(display, False);
        Window root = 0;
        Window child = 0;
        int rootX = 0, rootY = 0, windowX = 0, windowY = 0;
        unsigned mask = 0;
        XQueryPointer(display, DefaultRootWindow(display), &root, &child, &rootX, &rootY, &windowX, &windowY, &mask);
        if (child) {
            XRaiseWindow(display, child);
            XSetInputFocus(display, child, RevertToParent, CurrentTime);
            typeKey(display, keyval, modifiers);
            pressed = true;
        }
        XSync(display, False);
    }
    XCloseDisplay(display);
    return pressed;
}

} // namespace velder::test::RealInput
