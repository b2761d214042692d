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

// For dispose: every child goes, a menu first.
void unparentChildren(GtkWidget* widget);

} // namespace velder
