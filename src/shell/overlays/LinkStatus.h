#pragma once

#include "glib/GObjectPtr.h"

#include <gtk/gtk.h>
#include <string>

namespace velder {

// Where the link under the pointer goes: a small label at the bottom-left of the page while the pointer is
// over a link, in the chrome's colours (the "velder-link-status" style of the window). It moves to the right
// when the pointer comes near it, and takes no pointer input, so the page beneath keeps every click.
class LinkStatus {
public:
    LinkStatus();
    LinkStatus(const LinkStatus&) = delete;
    LinkStatus& operator=(const LinkStatus&) = delete;

    GtkWidget* widget() const { return m_label.get(); }

    // Shows the address, or hides the label for an empty one.
    void show(const std::string& url);
    bool isShowing() const { return gtk_widget_get_visible(m_label.get()); }
    std::string text() const { return gtk_label_get_text(GTK_LABEL(m_label.get())); }
    bool isOnTheRight() const { return gtk_widget_get_halign(m_label.get()) == GTK_ALIGN_END; }

    // The pointer at (x, y) of a page area of that size: near the label's corner, the label makes way.
    void pointerAt(double x, double y, double width, double height);

private:
    GObjectPtr<GtkWidget> m_label;
};

} // namespace velder
