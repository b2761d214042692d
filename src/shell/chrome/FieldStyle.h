#pragma once

#include <gtk/gtk.h>

namespace velder {

// The look of the chrome's text fields (address bar, find bar): no frame, background or focus ring; text
// and caret in the text colour made readable on the field colour, the selection in the highlight colour
// with black or white on it, the placeholder in the passive colour. One style sheet serves every window,
// as the colours are the same everywhere.
namespace FieldStyle {

enum class Kind {
    address, // 13-pixel text
    find, // 12-pixel text
    count, // the find bar's match count: 11-pixel tabular digits, in the passive colour
    notice, // a line of text on the field colour (the location prompt's): 13 pixels, in the text colour
};

// Styles `widget` (a GtkText, or a GtkLabel for `count`) and makes sure the style sheet is installed.
void attach(GtkWidget* widget, Kind kind);

// Rebuilds the style sheet from the current colours; nothing happens when they haven't changed.
void refresh();

} // namespace FieldStyle

} // namespace velder
