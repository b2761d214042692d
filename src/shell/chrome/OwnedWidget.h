#pragma once

#include <gtk/gtk.h>

namespace velder {

// Each widget of the chrome is a GObject subclass whose instance points back at the C++ object that owns
// it. The widget may outlive its owner (a container can still hold it): the owner clears the pointer when
// it goes, and every vfunc and handler asks for it first.
template<class Owner, class Parent = GtkWidget> struct OwnedWidget {
    Parent parent;
    Owner* owner;
};

template<class Owner, class Parent = GtkWidget> Owner* ownerOf(gpointer widget)
{
    return reinterpret_cast<OwnedWidget<Owner, Parent>*>(widget)->owner;
}

template<class Owner, class Parent = GtkWidget> void setOwner(GtkWidget* widget, Owner* owner)
{
    reinterpret_cast<OwnedWidget<Owner, Parent>*>(widget)->owner = owner;
}

// vfuncs that hand the work to the owner's snapshot(snapshot) and allocate(width, height).
template<class Owner> void snapshotByOwner(GtkWidget* widget, GtkSnapshot* snapshot)
{
    if (auto* owner = ownerOf<Owner>(widget)) {
        owner->snapshot(snapshot);
    }
}

template<class Owner> void allocateByOwner(GtkWidget* widget, int width, int height, int)
{
    if (auto* owner = ownerOf<Owner>(widget)) {
        owner->allocate(width, height);
    }
}

// Allocates `child` at (x, y), rounded to whole pixels, with a size never below zero.
void placeChild(GtkWidget* child, double x, double y, double width, double height);

// For dispose: every child goes, a menu first.
void unparentChildren(GtkWidget* widget);

// The dispose of every widget class of the chrome: its children go, then the parent class's dispose runs.
// `getType` is the class's own get_type function (G_DEFINE_TYPE's).
template<GType (*getType)()> void disposeWithChildren(GObject* object)
{
    unparentChildren(GTK_WIDGET(object));
    G_OBJECT_CLASS(g_type_class_peek_parent(g_type_class_peek(getType())))->dispose(object);
}

// The pointer entering and leaving the widget reach the owner's pointerEntered() and pointerLeft().
template<class Owner> void addHoverTracking(GtkWidget* widget)
{
    struct Handlers {
        static void entered(GtkEventControllerMotion*, double, double, gpointer widget)
        {
            if (auto* owner = ownerOf<Owner>(widget)) {
                owner->pointerEntered();
            }
        }
        static void left(GtkEventControllerMotion*, gpointer widget)
        {
            if (auto* owner = ownerOf<Owner>(widget)) {
                owner->pointerLeft();
            }
        }
    };
    GtkEventController* motion = gtk_event_controller_motion_new();
    g_signal_connect(motion, "enter", G_CALLBACK(Handlers::entered), widget);
    g_signal_connect(motion, "leave", G_CALLBACK(Handlers::left), widget);
    gtk_widget_add_controller(widget, motion);
}

} // namespace velder
