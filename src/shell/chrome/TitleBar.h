#pragma once

#include "glib/GObjectPtr.h"

#include <gtk/gtk.h>
#include <memory>

namespace velder {

class ChromeButton;
class TabStrip;
class TitlebarRow;
class UpdateSlot;

// The window's title bar, drawn by Velder: the window controls, the tab strip, the wordmark with its menu
// and the update slot, on a row whose bare parts drag the window.
class TitleBar {
public:
    explicit TitleBar(bool isPrivate);
    ~TitleBar();
    TitleBar(const TitleBar&) = delete;
    TitleBar& operator=(const TitleBar&) = delete;

    // The window handle around the row, for gtk_window_set_titlebar.
    GtkWidget* widget() const { return m_handle; }
    TabStrip& strip() const { return *m_strip; }
    ChromeButton& wordmark() const { return *m_wordmark; }
    UpdateSlot& updateSlot() const { return *m_updateSlot; }
    void redraw();

private:
    std::unique_ptr<TitlebarRow> m_row;
    std::unique_ptr<TabStrip> m_strip;
    std::unique_ptr<ChromeButton> m_wordmark;
    std::unique_ptr<UpdateSlot> m_updateSlot;
    GtkWidget* m_handle = nullptr; // owned by the window once set
};

} // namespace velder
