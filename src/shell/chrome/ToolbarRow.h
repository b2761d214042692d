#pragma once

#include "shell/chrome/PaintedBox.h"

#include <gtk/gtk.h>

namespace velder {

// The row under the title bar that holds the navigation buttons and the address bar: the field colour with a
// 1-pixel line at its bottom. A horizontal GtkBox; the window adds and lays out the children.
class ToolbarRow {
public:
    static constexpr int height = 42;

    ToolbarRow();

    GtkWidget* widget() const { return m_box.widget(); }
    void append(GtkWidget* child) { m_box.append(child); }

private:
    PaintedBox m_box;
};

} // namespace velder
