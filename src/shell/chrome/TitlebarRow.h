#pragma once

#include "shell/chrome/PaintedBox.h"

#include <gtk/gtk.h>

namespace velder {

// The row in the title bar that holds the tab strip, the wordmark and the update slot, in the border colour.
// A horizontal GtkBox; the window adds and lays out the children and puts the row in a window handle, so
// that its bare parts drag the window.
class TitlebarRow {
public:
    static constexpr int minimumHeight = 28;

    TitlebarRow();

    GtkWidget* widget() const { return m_box.widget(); }
    void append(GtkWidget* child) { m_box.append(child); }

private:
    PaintedBox m_box;
};

} // namespace velder
