#include "shell/chrome/MenuAnchor.h"

#include "shell/chrome/PopupMenu.h"

struct VelderMenuAnchor {
    GtkWidget parent;
};

struct VelderMenuAnchorClass {
    GtkWidgetClass parentClass;
};

G_DEFINE_TYPE(VelderMenuAnchor, velder_menu_anchor, GTK_TYPE_WIDGET)

static void velder_menu_anchor_init(VelderMenuAnchor* anchor)
{
    gtk_widget_set_can_target(GTK_WIDGET(anchor), false);
}

static void velder_menu_anchor_size_allocate(GtkWidget* widget, int, int, int)
{
    velder::PopupMenu::presentAll(widget);
}

static void velder_menu_anchor_dispose(GObject* object)
{
    velder::PopupMenu::unparent(GTK_WIDGET(object));
    G_OBJECT_CLASS(velder_menu_anchor_parent_class)->dispose(object);
}

static void velder_menu_anchor_class_init(VelderMenuAnchorClass* anchorClass)
{
    G_OBJECT_CLASS(anchorClass)->dispose = velder_menu_anchor_dispose;
    GTK_WIDGET_CLASS(anchorClass)->size_allocate = velder_menu_anchor_size_allocate;
}

namespace velder::MenuAnchor {

GtkWidget* create()
{
    return GTK_WIDGET(g_object_new(velder_menu_anchor_get_type(), nullptr));
}

} // namespace velder::MenuAnchor
