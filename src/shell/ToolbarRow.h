#pragma once

#include "glib/GObjectPtr.h"
#include "shell/Themed.h"

#include <gtk/gtk.h>

namespace velder {

// The row under the title bar that holds the navigation buttons and the address bar: the field colour with a
// 1-pixel line at its bottom. A horizontal GtkBox; the window adds and lays out the children.
class ToolbarRow {
public:
    static constexpr int height = 42;

    ToolbarRow();
    ~ToolbarRow();
    ToolbarRow(const ToolbarRow&) = delete;
    ToolbarRow& operator=(const ToolbarRow&) = delete;

    GtkWidget* widget() const { return m_widget.get(); }
    void append(GtkWidget* child) { gtk_box_append(GTK_BOX(m_widget.get()), child); }

    // Internal: draws the background under the children.
    void snapshotBackground(GtkSnapshot* snapshot);

private:
    GObjectPtr<GtkWidget> m_widget;
    Themed::Token m_themeToken;
};

} // namespace velder
