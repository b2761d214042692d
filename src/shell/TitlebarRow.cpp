#include "shell/TitlebarRow.h"

#include "core/Palette.h"
#include "shell/Drawing.h"

struct VelderTitlebarRow {
    GtkBox parent;
    velder::TitlebarRow* owner;
};
struct VelderTitlebarRowClass {
    GtkBoxClass parent;
};
G_DEFINE_TYPE(VelderTitlebarRow, velder_titlebar_row, GTK_TYPE_BOX)

namespace {

void rowSnapshot(GtkWidget* widget, GtkSnapshot* snapshot)
{
    if (auto* row = reinterpret_cast<VelderTitlebarRow*>(widget)->owner) {
        row->snapshotBackground(snapshot);
    }
    GTK_WIDGET_CLASS(velder_titlebar_row_parent_class)->snapshot(widget, snapshot);
}

} // namespace

static void velder_titlebar_row_class_init(VelderTitlebarRowClass* klass)
{
    GTK_WIDGET_CLASS(klass)->snapshot = rowSnapshot;
    gtk_widget_class_set_css_name(GTK_WIDGET_CLASS(klass), "titlebarrow");
}

static void velder_titlebar_row_init(VelderTitlebarRow*)
{
}

namespace velder {

TitlebarRow::TitlebarRow()
    : m_widget(GObjectPtr<GtkWidget>::adopt(
        GTK_WIDGET(g_object_new(velder_titlebar_row_get_type(), "orientation", GTK_ORIENTATION_HORIZONTAL, nullptr))))
{
    reinterpret_cast<VelderTitlebarRow*>(m_widget.get())->owner = this;
    gtk_widget_set_size_request(m_widget.get(), -1, minimumHeight);
    m_themeToken = Themed::subscribeToTheme(m_widget.get(), nullptr);
}

TitlebarRow::~TitlebarRow()
{
    reinterpret_cast<VelderTitlebarRow*>(m_widget.get())->owner = nullptr;
}

void TitlebarRow::snapshotBackground(GtkSnapshot* snapshot)
{
    graphene_rect_t bounds = Drawing::bounds(m_widget.get());
    Drawing::fill(snapshot, Palette::borderColor(), bounds);
}

} // namespace velder
