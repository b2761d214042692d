#pragma once

#include "shell/chrome/OwnedWidget.h"

namespace velder {

// A press of the primary button followed to its release, for the chrome's button-like widgets: the
// owner's press(), pointerMoved(x, y), release(x, y) and cancelPress() are called in the widget's
// coordinates. The press is claimed, so that a button in the title bar never drags the window.
template<class Owner> void addPressGesture(GtkWidget* widget)
{
    struct Handlers {
        static void began(GtkGestureDrag* gesture, double, double, gpointer widget)
        {
            gtk_gesture_set_state(GTK_GESTURE(gesture), GTK_EVENT_SEQUENCE_CLAIMED);
            if (auto* owner = ownerOf<Owner>(widget)) {
                owner->press();
            }
        }
        static void updated(GtkGestureDrag* gesture, double dx, double dy, gpointer widget)
        {
            double x = 0, y = 0;
            gtk_gesture_drag_get_start_point(gesture, &x, &y);
            if (auto* owner = ownerOf<Owner>(widget)) {
                owner->pointerMoved(x + dx, y + dy);
            }
        }
        static void ended(GtkGestureDrag* gesture, double dx, double dy, gpointer widget)
        {
            double x = 0, y = 0;
            gtk_gesture_drag_get_start_point(gesture, &x, &y);
            if (auto* owner = ownerOf<Owner>(widget)) {
                owner->release(x + dx, y + dy);
            }
        }
        static void cancelled(GtkGesture*, GdkEventSequence*, gpointer widget)
        {
            if (auto* owner = ownerOf<Owner>(widget)) {
                owner->cancelPress();
            }
        }
    };
    GtkGesture* drag = gtk_gesture_drag_new();
    gtk_gesture_single_set_button(GTK_GESTURE_SINGLE(drag), GDK_BUTTON_PRIMARY);
    g_signal_connect(drag, "drag-begin", G_CALLBACK(Handlers::began), widget);
    g_signal_connect(drag, "drag-update", G_CALLBACK(Handlers::updated), widget);
    g_signal_connect(drag, "drag-end", G_CALLBACK(Handlers::ended), widget);
    g_signal_connect(drag, "cancel", G_CALLBACK(Handlers::cancelled), widget);
    gtk_widget_add_controller(widget, GTK_EVENT_CONTROLLER(drag));
}

} // namespace velder
