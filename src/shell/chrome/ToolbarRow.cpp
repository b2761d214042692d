#include "shell/chrome/ToolbarRow.h"

#include "core/Palette.h"
#include "core/Theme.h"
#include "shell/chrome/Drawing.h"

namespace velder {

ToolbarRow::ToolbarRow()
    : m_box([](GtkSnapshot* snapshot, const graphene_rect_t& bounds) {
        Drawing::fill(snapshot, Palette::fieldColor(), bounds);
        Drawing::fill(snapshot, Theme::fixedLine, Drawing::rect(0, bounds.size.height - 1, bounds.size.width, 1));
    })
{
    gtk_widget_set_size_request(m_box.widget(), -1, height);
    gtk_widget_add_css_class(m_box.widget(), "toolbar-row");
}

} // namespace velder
