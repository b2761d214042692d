#pragma once

#include "core/Color.h"
#include "glib/GObjectPtr.h"

#include <gtk/gtk.h>

namespace velder {

// What a blank tab shows instead of its empty page: a dark field with a faint mark of Velder's icon.
// It takes no pointer input, so clicks reach the page beneath.
class BlankSlate {
public:
    static constexpr Color background = Color::fromHex(0x141414);
    static constexpr double markOpacity = 0.15;

    BlankSlate();
    ~BlankSlate();
    BlankSlate(const BlankSlate&) = delete;
    BlankSlate& operator=(const BlankSlate&) = delete;

    GtkWidget* widget() const { return m_widget.get(); }

    // The mark's side: 0.975 of the shorter side, in whole pixels.
    static int markSide(int width, int height);
    // Velder's icon, decoded once from the compiled-in "velder-mark.png"; null (and logged) if it can't be.
    static GdkTexture* mark();

    // Internal: the widget's snapshot.
    void snapshot(GtkSnapshot* snapshot);

private:
    GObjectPtr<GtkWidget> m_widget;
};

} // namespace velder
