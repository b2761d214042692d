#pragma once

#include "core/LocationAnswer.h"
#include "glib/GObjectPtr.h"
#include "shell/chrome/ChromeButton.h"
#include "shell/chrome/Themed.h"

#include <functional>
#include <gtk/gtk.h>
#include <string>

namespace velder {

// The strip across the top of the page that asks whether a site may know the user's location, with
// "Allow once", "Always allow" and "Never" on its right. One per window, shared by its tabs: it holds no
// request of its own, and the window shows it for the active tab's parked request and hides it otherwise.
class LocationPrompt {
public:
    static constexpr int height = 44;

    LocationPrompt();
    ~LocationPrompt();
    LocationPrompt(const LocationPrompt&) = delete;
    LocationPrompt& operator=(const LocationPrompt&) = delete;

    GtkWidget* widget() const { return m_widget.get(); }
    GtkWidget* label() const { return m_label; }
    ChromeButton& allowOnceButton() { return m_allowOnce; }
    ChromeButton& alwaysAllowButton() { return m_alwaysAllow; }
    ChromeButton& neverButton() { return m_never; }

    std::function<void(LocationChoice)> onChoice;

    bool isShowing() const { return gtk_widget_get_visible(m_widget.get()); }
    // "<origin> wants to know your location", and the strip shown.
    void show(const std::string& origin);
    // Hidden, its text emptied.
    void hide();

    // Internal: the widget's vfuncs.
    void snapshot(GtkSnapshot* snapshot);
    void allocate(int width, int height);

private:
    void applyTheme();
    void pick(LocationChoice choice);

    GObjectPtr<GtkWidget> m_widget;
    GtkWidget* m_label = nullptr; // a child of m_widget
    ChromeButton m_allowOnce;
    ChromeButton m_alwaysAllow;
    ChromeButton m_never;
    Themed::Token m_themeToken;
};

} // namespace velder
