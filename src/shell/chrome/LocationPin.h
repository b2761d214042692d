#pragma once

#include "glib/GObjectPtr.h"

#include <functional>
#include <gtk/gtk.h>

namespace velder {

// The pin at the end of the address bar that tells whether the site may see the user's location: green
// and haloed when it may, grey when not. Hidden until the window says it applies to the page. It never
// takes the keyboard focus.
class LocationPin {
public:
    static constexpr int side = 22;
    static constexpr double symbolPointSize = 11;

    LocationPin();
    ~LocationPin();
    LocationPin(const LocationPin&) = delete;
    LocationPin& operator=(const LocationPin&) = delete;

    GtkWidget* widget() const { return m_widget.get(); }

    // A press on the pin (its menu is the window's to build).
    std::function<void()> onPress;

    bool isLit() const { return m_isLit; }
    // Also sets the accessible label and the tooltip.
    void setLit(bool lit);

    bool isShown() const { return gtk_widget_get_visible(m_widget.get()); }
    void setShown(bool shown);

    // What the pin's click gesture calls; tests drive it directly.
    void press();

    // Internal: the widget's snapshot.
    void snapshot(GtkSnapshot* snapshot);

private:
    void describe();

    GObjectPtr<GtkWidget> m_widget;
    bool m_isLit = false;
};

} // namespace velder
