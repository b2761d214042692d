#include "shell/ToolbarRow.h"

#include "core/Palette.h"
#include "core/Theme.h"
#include "shell/Drawing.h"

struct VelderToolbarRow {
    GtkBox parent;
    velder::ToolbarRow* owner;
};
struct VelderToolbarRowClass {
    GtkBoxClass parent;
};
G_DEFINE_TYPE(VelderToolbarRow, velder_toolbar_row, GTK_TYPE_BOX)

namespace {

void rowSnapshot(GtkWidget* widget, GtkSnapshot* snapshot)
{
    if (auto* row = reinterpret_cast<VelderToolbarRow*>(widget)->owner) {
        row->snapshotBackground(snapshot);
    }
    GTK_WIDGET_CLASS(velder_toolbar_row_parent_class)->snapshot(widget, snapshot);
}

} // namespace

static void velder_toolbar_row_class_init(VelderToolbarRowClass* klass)
{
    GTK_WIDGET_CLASS(klass)->snapshot = rowSnapshot;
    gtk_widget_class_set_css_name(GTK_WIDGET_CLASS(klass), "toolbarrow");
}

static void velder_toolbar_row_init(VelderToolbarRow*)
{
}

namespace velder {

ToolbarRow::ToolbarRow()
    : m_widget(GObjectPtr<GtkWidget>::adopt(
        GTK_WIDGET(g_object_new(velder_toolbar_row_get_type(), "orientation", GTK_ORIENTATION_HORIZONTAL, nullptr))))
{
    reinterpret_cast<VelderToolbarRow*>(m_widget.get())->owner = this;
    gtk_widget_set_size_request(m_widget.get(), -1, height);
    m_themeToken = Themed::subscribeToTheme(m_widget.get(), nullptr);
}

ToolbarRow::~ToolbarRow()
{
    reinterpret_cast<VelderToolbarRow*>(m_widget.get())->owner = nullptr;
}

void ToolbarRow::snapshotBackground(GtkSnapshot* snapshot)
{
    graphene_rect_t bounds = Drawing::bounds(m_widget.get());
    Drawing::fill(snapshot, Palette::fieldColor(), bounds);
    Drawing::fill(snapshot, Theme::fixedLine, Drawing::rect(0, bounds.size.height - 1, bounds.size.width, 1));
}

} // namespace velder
