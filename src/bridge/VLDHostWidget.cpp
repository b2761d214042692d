#include "bridge/VLDHostWidget.h"

namespace velder {

namespace {

struct VelderHostWidget {
    GtkWidget parent;
    std::uint64_t viewIdentifier;
    VLDHostRootedCallback onRooted;
};

struct VelderHostWidgetClass {
    GtkWidgetClass parent;
};

G_DEFINE_TYPE(VelderHostWidget, velder_host_widget, GTK_TYPE_WIDGET)

void velder_host_widget_root(GtkWidget* widget)
{
    GTK_WIDGET_CLASS(velder_host_widget_parent_class)->root(widget);
    auto* host = reinterpret_cast<VelderHostWidget*>(widget);
    if (host->onRooted) {
        host->onRooted(host->viewIdentifier);
    }
}

void velder_host_widget_dispose(GObject* object)
{
    while (GtkWidget* child = gtk_widget_get_first_child(GTK_WIDGET(object))) {
        gtk_widget_unparent(child);
    }
    G_OBJECT_CLASS(velder_host_widget_parent_class)->dispose(object);
}

void velder_host_widget_class_init(VelderHostWidgetClass* hostClass)
{
    G_OBJECT_CLASS(hostClass)->dispose = velder_host_widget_dispose;
    GTK_WIDGET_CLASS(hostClass)->root = velder_host_widget_root;
    gtk_widget_class_set_layout_manager_type(GTK_WIDGET_CLASS(hostClass), GTK_TYPE_BIN_LAYOUT);
    gtk_widget_class_set_css_name(GTK_WIDGET_CLASS(hostClass), "browserview");
}

void velder_host_widget_init(VelderHostWidget* host)
{
    host->viewIdentifier = 0;
    host->onRooted = nullptr;
    gtk_widget_set_hexpand(GTK_WIDGET(host), TRUE);
    gtk_widget_set_vexpand(GTK_WIDGET(host), TRUE);
    gtk_widget_set_focusable(GTK_WIDGET(host), FALSE);
}

} // namespace

GtkWidget* VLDHostWidgetNew(std::uint64_t viewIdentifier, VLDHostRootedCallback onRooted)
{
    auto* host = static_cast<VelderHostWidget*>(g_object_new(velder_host_widget_get_type(), nullptr));
    host->viewIdentifier = viewIdentifier;
    host->onRooted = onRooted;
    return GTK_WIDGET(host);
}

} // namespace velder
