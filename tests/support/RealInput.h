#pragma once

#include <gtk/gtk.h>
#include <initializer_list>

namespace velder::test {

// Real key presses and mouse clicks, through the X server's XTest extension, so that the engine sees user
// gestures, mouse buttons and modifiers exactly as a person would make them (events made by a page's script
// are not gestures). Needs an X11 display, such as the Xvfb the windowed tests run on.
namespace RealInput {

// Whether XTest can be used here; tests that need it skip without it.
bool available();

// Moves the pointer to (x, y) in the widget's coordinates and clicks `button` (1 left, 2 middle, 3 right)
// while holding the given modifier keys (GDK key values such as GDK_KEY_Control_L).
void click(GtkWidget* widget, double x, double y, unsigned button = 1, std::initializer_list<unsigned> modifiers = {});

// Presses and releases a key wherever the keyboard is now, moving nothing: for keys to a menu that holds it.
void pressKeyInPlace(unsigned keyval, std::initializer_list<unsigned> modifiers = {});

// Moves the pointer to (x, y) in the widget's coordinates, arriving from a few pixels away.
void movePointer(GtkWidget* widget, double x, double y);

// Presses and releases the key of `keyval` while holding the given modifier keys, with the keyboard given to
// the widget's window (the widget itself must have GTK's focus to get the key).
void pressKey(GtkWidget* widget, unsigned keyval, std::initializer_list<unsigned> modifiers = {});

// For another process's window: moves the pointer to (x, y) on the screen, gives the keyboard to the window
// there and presses the key while holding the modifiers. False without XTest or a window at that point.
bool pressKeyOnScreen(int x, int y, unsigned keyval, std::initializer_list<unsigned> modifiers = {});

} // namespace RealInput

} // namespace velder::test
