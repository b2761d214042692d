#pragma once

#include "glib/GObjectPtr.h"
#include "shell/chrome/Themed.h"

#include <functional>
#include <gtk/gtk.h>

namespace velder {

// A horizontal GtkBox that paints a background of its own under its children, and repaints it when the
// theme changes. The rows of the chrome are made of it.
class PaintedBox {
public:
    using Painter = std::function<void(GtkSnapshot* snapshot, const graphene_rect_t& bounds)>;

    explicit PaintedBox(Painter painter);
    ~PaintedBox();
    PaintedBox(const PaintedBox&) = delete;
    PaintedBox& operator=(const PaintedBox&) = delete;

    GtkWidget* widget() const { return m_widget.get(); }
    void append(GtkWidget* child) { gtk_box_append(GTK_BOX(m_widget.get()), child); }

    // Internal: paints the background.
    void snapshot(GtkSnapshot* snapshot);

private:
    GObjectPtr<GtkWidget> m_widget;
    Painter m_painter;
    Themed::Token m_themeToken;
};

} // namespace velder
