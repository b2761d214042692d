#pragma once

#include "glib/GObjectPtr.h"
#include "shell/Themed.h"

#include <gtk/gtk.h>

namespace velder {

// The row in the title bar that holds the tab strip, the wordmark and the update slot, in the border colour.
// A horizontal GtkBox; the window adds and lays out the children and puts the row in a window handle, so
// that its bare parts drag the window.
class TitlebarRow {
public:
    static constexpr int minimumHeight = 28;

    TitlebarRow();
    ~TitlebarRow();
    TitlebarRow(const TitlebarRow&) = delete;
    TitlebarRow& operator=(const TitlebarRow&) = delete;

    GtkWidget* widget() const { return m_widget.get(); }
    void append(GtkWidget* child) { gtk_box_append(GTK_BOX(m_widget.get()), child); }

    // Internal: draws the background under the children.
    void snapshotBackground(GtkSnapshot* snapshot);

private:
    GObjectPtr<GtkWidget> m_widget;
    Themed::Token m_themeToken;
};

} // namespace velder
