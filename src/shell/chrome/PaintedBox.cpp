#include "shell/chrome/PaintedBox.h"

#include "shell/chrome/Drawing.h"
#include "shell/chrome/OwnedWidget.h"

using VelderPaintedBox = velder::OwnedWidget<velder::PaintedBox, GtkBox>;
using VelderPaintedBoxClass = GtkBoxClass;
G_DEFINE_TYPE(VelderPaintedBox, velder_painted_box, GTK_TYPE_BOX)

namespace {

void boxSnapshot(GtkWidget* widget, GtkSnapshot* snapshot)
{
    if (auto* box = velder::ownerOf<velder::PaintedBox, GtkBox>(widget)) {
        box->snapshot(snapshot);
    }
    GTK_WIDGET_CLASS(velder_painted_box_parent_class)->snapshot(widget, snapshot);
}

} // namespace

static void velder_painted_box_class_init(VelderPaintedBoxClass* klass)
{
    GTK_WIDGET_CLASS(klass)->snapshot = boxSnapshot;
}

static void velder_painted_box_init(VelderPaintedBox*)
{
}

namespace velder {

PaintedBox::PaintedBox(Painter painter)
    : m_widget(GObjectPtr<GtkWidget>::adopt(
        GTK_WIDGET(g_object_new(velder_painted_box_get_type(), "orientation", GTK_ORIENTATION_HORIZONTAL, nullptr))))
    , m_painter(std::move(painter))
{
    setOwner<PaintedBox, GtkBox>(m_widget.get(), this);
    m_themeToken = Themed::subscribeToTheme(m_widget.get(), nullptr);
}

PaintedBox::~PaintedBox()
{
    setOwner<PaintedBox, GtkBox>(m_widget.get(), nullptr);
}

void PaintedBox::snapshot(GtkSnapshot* snapshot)
{
    if (m_painter) {
        m_painter(snapshot, Drawing::bounds(m_widget.get()));
    }
}

} // namespace velder
