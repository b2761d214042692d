#pragma once

#include "core/LocationAnswer.h"
#include "glib/GObjectPtr.h"

#include <functional>
#include <gtk/gtk.h>
#include <optional>
#include <string>
#include <string_view>

namespace velder {

// The pin at the end of the address bar that tells whether the site may see the user's location: green
// and haloed when it may, grey when not. Shown only while sites may ask at all and the page has an origin.
// A press opens its menu: the origin, the three answers with the stored one checked, and the global switch.
// It never takes the keyboard focus.
class LocationPin {
public:
    static constexpr int side = 22;
    static constexpr double symbolPointSize = 11;
    static constexpr const char* servicesExplanation
        = "Whether sites may ask for your location at all. Off hides this pin.";

    LocationPin();
    ~LocationPin();
    LocationPin(const LocationPin&) = delete;
    LocationPin& operator=(const LocationPin&) = delete;

    GtkWidget* widget() const { return m_widget.get(); }
    // The menu's actions ("pin.never" in its items), with their enabled and checked states.
    GActionGroup* actions() const { return G_ACTION_GROUP(m_actions.get()); }

    bool isLit() const { return m_isLit; }
    void setLit(bool lit);

    // A pick from the menu.
    std::function<void(LocationChoice)> onChoice;
    // The menu's switch was flipped; the argument is the new state.
    std::function<void(bool)> onToggleGlobalSwitch;
    // The active tab's origin, asked for at each use.
    std::function<std::optional<std::string>()> currentOrigin;

    bool isShown() const { return gtk_widget_get_visible(m_widget.get()); }
    // Shown while the switch is on and there is an origin; also sets the accessible label and the tooltip.
    void refreshVisibility();

    // What the pin's click gesture calls; tests drive it directly.
    void press();
    // The menu for the current origin, its check marks and enabled states set; built at each press.
    GObjectPtr<GMenuModel> buildMenu();

    // Internal: the widget's snapshot.
    void snapshot(GtkSnapshot* snapshot);

private:
    void describe();
    void addActions();
    void activate(std::string_view name);

    GObjectPtr<GtkWidget> m_widget;
    GObjectPtr<GSimpleActionGroup> m_actions;
    bool m_isLit = false;
};

} // namespace velder
