#include "shell/chrome/Drawing.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace velder::Drawing {

GdkRGBA rgba(Color color)
{
    return { static_cast<float>(color.red), static_cast<float>(color.green), static_cast<float>(color.blue),
        static_cast<float>(color.alpha) };
}

std::string cssColor(Color color)
{
    auto byte = [](double component) { return static_cast<int>(std::lround(std::clamp(component, 0.0, 1.0) * 255)); };
    char text[64];
    std::snprintf(text, sizeof text, "rgba(%d,%d,%d,%.3f)", byte(color.red), byte(color.green), byte(color.blue),
        std::clamp(color.alpha, 0.0, 1.0));
    return text;
}

void fill(GtkSnapshot* snapshot, Color color, const graphene_rect_t& rect)
{
    GdkRGBA value = rgba(color);
    gtk_snapshot_append_color(snapshot, &value, &rect);
}

void fillRounded(GtkSnapshot* snapshot, Color color, const graphene_rect_t& rect, double radius)
{
    GskRoundedRect rounded;
    gsk_rounded_rect_init_from_rect(&rounded, &rect, static_cast<float>(radius));
    gtk_snapshot_push_rounded_clip(snapshot, &rounded);
    fill(snapshot, color, rect);
    gtk_snapshot_pop(snapshot);
}

void strokeRounded(GtkSnapshot* snapshot, Color color, const graphene_rect_t& rect, double radius, double lineWidth)
{
    graphene_rect_t area = inset(rect, -lineWidth, -lineWidth);
    cairo_t* cairo = gtk_snapshot_append_cairo(snapshot, &area);
    roundedRectPath(cairo, rect, radius);
    setSource(cairo, color);
    cairo_set_line_width(cairo, lineWidth);
    cairo_stroke(cairo);
    cairo_destroy(cairo);
}

void setSource(cairo_t* cairo, Color color)
{
    cairo_set_source_rgba(cairo, color.red, color.green, color.blue, color.alpha);
}

void roundedRectPath(cairo_t* cairo, const graphene_rect_t& rect, double radius)
{
    double x = rect.origin.x, y = rect.origin.y, w = rect.size.width, h = rect.size.height;
    double r = std::max(0.0, std::min({ radius, w / 2, h / 2 }));
    cairo_new_sub_path(cairo);
    cairo_arc(cairo, x + w - r, y + r, r, -M_PI / 2, 0);
    cairo_arc(cairo, x + w - r, y + h - r, r, 0, M_PI / 2);
    cairo_arc(cairo, x + r, y + h - r, r, M_PI / 2, M_PI);
    cairo_arc(cairo, x + r, y + r, r, M_PI, 3 * M_PI / 2);
    cairo_close_path(cairo);
}

GObjectPtr<PangoLayout> textLayout(
    GtkWidget* widget, std::string_view text, double pixelSize, PangoWeight weight, double width)
{
    auto layout = GObjectPtr<PangoLayout>::adopt(gtk_widget_create_pango_layout(widget, nullptr));
    pango_layout_set_text(layout.get(), text.data(), static_cast<int>(text.size()));
    PangoFontDescription* font
        = pango_font_description_copy(pango_context_get_font_description(gtk_widget_get_pango_context(widget)));
    pango_font_description_set_absolute_size(font, pixelSize * PANGO_SCALE);
    pango_font_description_set_weight(font, weight);
    pango_layout_set_font_description(layout.get(), font);
    pango_font_description_free(font);
    pango_layout_set_single_paragraph_mode(layout.get(), TRUE);
    if (width >= 0) {
        pango_layout_set_width(layout.get(), static_cast<int>(width * PANGO_SCALE));
        pango_layout_set_ellipsize(layout.get(), PANGO_ELLIPSIZE_END);
    }
    return layout;
}

graphene_size_t layoutSize(PangoLayout* layout)
{
    PangoRectangle logical;
    pango_layout_get_extents(layout, nullptr, &logical);
    return { static_cast<float>(logical.width) / PANGO_SCALE, static_cast<float>(logical.height) / PANGO_SCALE };
}

void drawLayout(GtkSnapshot* snapshot, PangoLayout* layout, double x, double y, Color color)
{
    GdkRGBA value = rgba(color);
    gtk_snapshot_save(snapshot);
    graphene_point_t origin = GRAPHENE_POINT_INIT(static_cast<float>(x), static_cast<float>(y));
    gtk_snapshot_translate(snapshot, &origin);
    gtk_snapshot_append_layout(snapshot, layout, &value);
    gtk_snapshot_restore(snapshot);
}

bool contains(GtkWidget* widget, double x, double y)
{
    return x >= 0 && y >= 0 && x < gtk_widget_get_width(widget) && y < gtk_widget_get_height(widget);
}

graphene_rect_t rect(double x, double y, double width, double height)
{
    return GRAPHENE_RECT_INIT(static_cast<float>(x), static_cast<float>(y), static_cast<float>(std::max(width, 0.0)),
        static_cast<float>(std::max(height, 0.0)));
}

graphene_rect_t bounds(GtkWidget* widget)
{
    return rect(0, 0, gtk_widget_get_width(widget), gtk_widget_get_height(widget));
}

graphene_rect_t inset(const graphene_rect_t& r, double dx, double dy)
{
    return rect(r.origin.x + dx, r.origin.y + dy, r.size.width - 2 * dx, r.size.height - 2 * dy);
}

} // namespace velder::Drawing
