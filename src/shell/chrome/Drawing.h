#pragma once

#include "core/Color.h"
#include "glib/GObjectPtr.h"

#include <gtk/gtk.h>
#include <string>
#include <string_view>

namespace velder {

// Small drawing helpers shared by the chrome's widgets. Sizes are GTK logical pixels; a font size is the
// height of the font in those pixels, whatever the desktop's DPI says, so that the chrome keeps its
// proportions everywhere.
namespace Drawing {

GdkRGBA rgba(Color color);
// "rgba(r,g,b,a)" for style sheets.
std::string cssColor(Color color);

void fill(GtkSnapshot* snapshot, Color color, const graphene_rect_t& rect);
void fillRounded(GtkSnapshot* snapshot, Color color, const graphene_rect_t& rect, double radius);
// A rounded rectangle's outline, `lineWidth` wide, centred on the rectangle's edge.
void strokeRounded(GtkSnapshot* snapshot, Color color, const graphene_rect_t& rect, double radius, double lineWidth);

void setSource(cairo_t* cairo, Color color);
void roundedRectPath(cairo_t* cairo, const graphene_rect_t& rect, double radius);

// The widget's font family at `pixelSize`, in `weight`; with `width` >= 0 the text is cut at the end with
// an ellipsis to fit it.
GObjectPtr<PangoLayout> textLayout(GtkWidget* widget, std::string_view text, double pixelSize,
    PangoWeight weight = PANGO_WEIGHT_NORMAL, double width = -1);
// The layout's logical size in logical pixels.
graphene_size_t layoutSize(PangoLayout* layout);
void drawLayout(GtkSnapshot* snapshot, PangoLayout* layout, double x, double y, Color color);

// Whether (x, y), in the widget's coordinates, lies within its bounds.
bool contains(GtkWidget* widget, double x, double y);

graphene_rect_t rect(double x, double y, double width, double height);
graphene_rect_t bounds(GtkWidget* widget);
graphene_rect_t inset(const graphene_rect_t& rect, double dx, double dy);

} // namespace Drawing

} // namespace velder
