#include "shell/chrome/TitlebarRow.h"

#include "core/Palette.h"
#include "shell/chrome/Drawing.h"

namespace velder {

TitlebarRow::TitlebarRow()
    : m_box([](GtkSnapshot* snapshot, const graphene_rect_t& bounds) {
        Drawing::fill(snapshot, Palette::borderColor(), bounds);
    })
{
    gtk_widget_set_size_request(m_box.widget(), -1, minimumHeight);
    gtk_widget_add_css_class(m_box.widget(), "titlebar-row");
}

} // namespace velder
