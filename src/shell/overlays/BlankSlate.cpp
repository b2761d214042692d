#include "shell/overlays/BlankSlate.h"

#include "core/Log.h"
#include "core/Resources.h"
#include "glib/GCharPtr.h"
#include "shell/chrome/Drawing.h"
#include "shell/chrome/OwnedWidget.h"

#include <algorithm>
#include <cmath>
#include <string>

using VelderBlankSlate = velder::OwnedWidget<velder::BlankSlate>;
using VelderBlankSlateClass = GtkWidgetClass;
G_DEFINE_TYPE(VelderBlankSlate, velder_blank_slate, GTK_TYPE_WIDGET)

namespace {

// The mark comes as a PNG rendered from the SVG at build time (768 pixels square: the mark is faint, so a tall
// window may stretch it a little), decoded by GTK's own PNG reader. Decoding SVG here would load an SVG
// library worth several megabytes into the program for one picture.
velder::GObjectPtr<GdkTexture> decodeMark()
{
    auto png = velder::Resources::lookup("velder-mark.png");
    if (!png) {
        velder::log("Velder: the icon is missing from the program's resources");
        return nullptr;
    }
    auto bytes = g_bytes_new_static(png->data(), png->size());
    GError* rawError = nullptr;
    GdkTexture* texture = gdk_texture_new_from_bytes(bytes, &rawError);
    g_bytes_unref(bytes);
    velder::GErrorPtr error(rawError);
    if (!texture) {
        velder::log(std::string("Velder: cannot decode the icon: ") + (error ? error->message : "no image"));
    }
    return velder::GObjectPtr<GdkTexture>::adopt(texture);
}

} // namespace

static void velder_blank_slate_class_init(VelderBlankSlateClass* widgetClass)
{
    widgetClass->snapshot = velder::snapshotByOwner<velder::BlankSlate>;
    gtk_widget_class_set_css_name(widgetClass, "blankslate");
    gtk_widget_class_set_accessible_role(widgetClass, GTK_ACCESSIBLE_ROLE_IMG);
}

static void velder_blank_slate_init(VelderBlankSlate* self)
{
    GtkWidget* widget = GTK_WIDGET(self);
    // Clicks go through to the page beneath.
    gtk_widget_set_can_target(widget, FALSE);
    gtk_widget_set_focusable(widget, FALSE);
    gtk_widget_set_hexpand(widget, TRUE);
    gtk_widget_set_vexpand(widget, TRUE);
}

namespace velder {

BlankSlate::BlankSlate()
    : m_widget(GObjectPtr<GtkWidget>::adopt(GTK_WIDGET(g_object_new(velder_blank_slate_get_type(), nullptr))))
{
    setOwner(m_widget.get(), this);
    gtk_accessible_update_property(GTK_ACCESSIBLE(m_widget.get()), GTK_ACCESSIBLE_PROPERTY_LABEL, "Velder", -1);
}

BlankSlate::~BlankSlate()
{
    setOwner<BlankSlate>(m_widget.get(), nullptr);
}

int BlankSlate::markSide(int width, int height)
{
    return static_cast<int>(std::min(width, height) * 0.975);
}

GdkTexture* BlankSlate::mark()
{
    // Main thread only; kept for the life of the process.
    static GdkTexture* texture = decodeMark().release();
    return texture;
}

void BlankSlate::snapshot(GtkSnapshot* snapshot)
{
    GtkWidget* widget = m_widget.get();
    int width = gtk_widget_get_width(widget);
    int height = gtk_widget_get_height(widget);
    Drawing::fill(snapshot, background, Drawing::bounds(widget));
    GdkTexture* texture = mark();
    int side = markSide(width, height);
    if (!texture || side <= 0) {
        return;
    }
    graphene_rect_t area = Drawing::rect((width - side) / 2, (height - side) / 2, side, side);
    gtk_snapshot_push_opacity(snapshot, markOpacity);
    gtk_snapshot_append_texture(snapshot, texture, &area);
    gtk_snapshot_pop(snapshot);
}

} // namespace velder
