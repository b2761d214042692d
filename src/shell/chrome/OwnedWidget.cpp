#include "shell/chrome/OwnedWidget.h"

#include "shell/chrome/PopupMenu.h"

#include <algorithm>
#include <cmath>

namespace velder {

void placeChild(GtkWidget* child, double x, double y, double width, double height)
{
    GtkAllocation frame = { static_cast<int>(std::round(x)), static_cast<int>(std::round(y)),
        static_cast<int>(std::max(width, 0.0)), static_cast<int>(std::max(height, 0.0)) };
    gtk_widget_size_allocate(child, &frame, -1);
}

void unparentChildren(GtkWidget* widget)
{
    PopupMenu::unparent(widget);
    while (GtkWidget* child = gtk_widget_get_first_child(widget)) {
        gtk_widget_unparent(child);
    }
}

} // namespace velder
