#pragma once

#include "glib/GObjectPtr.h"
#include "shell/chrome/ChromeButton.h"

#include <gtk/gtk.h>
#include <string>

namespace velder {

class TabStrip;

// The view of one tab in the strip: a rounded body (filled for the active tab, shaded while hovered), the
// title and a close button. Its presses go to the strip, which owns it.
class TabSlot {
public:
    static constexpr double closeButtonSize = 18;
    static constexpr double titlePixelSize = 11;

    explicit TabSlot(TabStrip& strip);
    ~TabSlot();
    TabSlot(const TabSlot&) = delete;
    TabSlot& operator=(const TabSlot&) = delete;

    GtkWidget* widget() const { return m_widget.get(); }

    TabStrip& strip() const { return m_strip; }
    int index() const { return m_index; }
    const std::string& title() const { return m_title; }
    bool isActive() const { return m_isActive; }
    bool isHovered() const { return m_isHovered; }
    ChromeButton& closeButton() { return m_closeButton; }
    bool isCloseButtonShown() const { return m_isCloseButtonShown; }

    // From the strip's setTabs: the title is also the tooltip and the accessible label.
    void configure(int index, const std::string& title, const std::string& address, bool isActive);

    // The close button shows on a slot at least 46 wide, or hovered, or active.
    static bool showsCloseButton(double width, bool isHovered, bool isActive);

    // What the slot's controllers call, in the slot's coordinates; tests drive them directly.
    void pointerEntered();
    void pointerLeft();
    // The middle button released: inside the slot, the tab closes.
    void middleButtonReleased(double x, double y);
    // The secondary button: the strip is asked for the tab's menu, shown at the pointer. False without one.
    bool openContextMenu(double x, double y);

    // Internal: the widget's vfuncs.
    void snapshot(GtkSnapshot* snapshot);
    void allocate(int width, int height);

private:
    void applyCloseButtonRule();

    GObjectPtr<GtkWidget> m_widget;
    TabStrip& m_strip;
    ChromeButton m_closeButton;
    int m_index = 0;
    std::string m_title;
    std::string m_address;
    bool m_isActive = false;
    bool m_isHovered = false;
    bool m_isCloseButtonShown = true;
};

} // namespace velder
