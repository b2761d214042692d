#include "shell/chrome/OwnedWidget.h"

#include "shell/chrome/PopupMenu.h"

namespace velder {

void unparentChildren(GtkWidget* widget)
{
    PopupMenu::unparent(widget);
    while (GtkWidget* child = gtk_widget_get_first_child(widget)) {
        gtk_widget_unparent(child);
    }
}

} // namespace velder
