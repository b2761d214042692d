#pragma once

#include "shell/chrome/OwnedWidget.h"

namespace velder {

// Wires a GtkText inside one of the chrome's widgets to that widget's owner: its keys go first to the
// owner's handleKey(keyval, modifiers), seen before the text itself handles them (it would take Up, Down
// and Return), and every change of its text to reportTextChange().
template<class Owner> void listenToField(GtkWidget* field, GtkWidget* widget)
{
    struct Handlers {
        static gboolean keyPressed(GtkEventControllerKey*, guint keyval, guint, GdkModifierType state, gpointer widget)
        {
            auto* owner = ownerOf<Owner>(widget);
            return owner && owner->handleKey(keyval, state);
        }
        static void changed(GtkEditable*, gpointer widget)
        {
            if (auto* owner = ownerOf<Owner>(widget)) {
                owner->reportTextChange();
            }
        }
    };
    GtkEventController* keys = gtk_event_controller_key_new();
    gtk_event_controller_set_propagation_phase(keys, GTK_PHASE_CAPTURE);
    g_signal_connect(keys, "key-pressed", G_CALLBACK(Handlers::keyPressed), widget);
    gtk_widget_add_controller(field, keys);
    g_signal_connect(field, "changed", G_CALLBACK(Handlers::changed), widget);
}

} // namespace velder
