#pragma once

#include "core/Color.h"

#include <functional>
#include <gtk/gtk.h>

namespace velder {

// Keyboard focus for the chrome's drawn widgets: Tab and F6 reach them, Return, Enter and Space activate
// them, and while the keyboard has brought the focus there they draw a ring in the chrome's own colours: the
// highlight colour, or black or white where it wouldn't stand out on the background. A mouse press never
// gives them the focus, and the focus a window hands out by itself when it opens shows no ring.
namespace KeyboardFocus {

void enable(GtkWidget* widget, std::function<void()> activate);

// Gives the widget the focus for a key (F6), with its ring, whatever GTK thinks of that key.
void grabByKeyboard(GtkWidget* widget);
// Whether the widget draws its ring now.
bool showsRing(GtkWidget* widget);

// The ring's colour over `background`.
Color ringColor(Color background);

// Draws the ring round the widget's bounds, `inset` inside them (outside when negative), when it shows.
void drawRing(GtkSnapshot* snapshot, GtkWidget* widget, Color background, double inset, double radius);

} // namespace KeyboardFocus

} // namespace velder
