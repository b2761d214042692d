#pragma once

#include "glib/GObjectPtr.h"
#include "shell/chrome/ChromeButton.h"
#include "shell/chrome/Themed.h"

#include <functional>
#include <gio/gio.h>
#include <gtk/gtk.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velder {

class TabSlot;

// The row of tabs in the title bar. It keeps no tab state: the window hands it titles and the active index
// through setTabs, and it reports what the user does through the callbacks. A press selects at once; a
// drag past 6 pixels reorders live as the pointer enters another slot; the middle button closes; the
// secondary button asks for the tab's menu. Presses on the bare strip aren't taken, so they reach the
// window handle around it and drag the window.
//
// Main thread only. The callbacks may call setTabs; they must not destroy the strip.
class TabStrip {
public:
    struct Item {
        std::string title;
        std::string address; // shown with the title in the slot's tool tip
    };

    static constexpr double maximumSlotWidth = 200;
    static constexpr double minimumSlotWidth = 58;
    static constexpr double dragThreshold = 6;
    static constexpr int newTabButtonWidth = 30;
    static constexpr int newTabButtonHeight = 26;

    TabStrip();
    ~TabStrip();
    TabStrip(const TabStrip&) = delete;
    TabStrip& operator=(const TabStrip&) = delete;

    GtkWidget* widget() const { return m_widget.get(); }

    std::function<void(int index)> onSelect;
    std::function<void(int index)> onClose;
    std::function<void(int from, int to)> onReorder;
    std::function<void()> onNewTab;
    // The menu of a tab; null gives none.
    std::function<GObjectPtr<GMenuModel>(int index)> onContextMenu;

    double leadingInset() const { return m_leadingInset; }
    void setLeadingInset(double inset);

    // Re-uses the slots it has (a slot doesn't stay with one tab), adding or removing them at the end.
    // The active index is clamped to the items, never below 0.
    void setTabs(std::vector<Item> items, int activeIndex);
    // Asks for the tab before (-1) or after (1) the active one, without wrapping round: the wheel's step.
    bool step(int direction);
    const std::vector<Item>& items() const { return m_items; }
    int activeIndex() const { return m_activeIndex; }
    std::size_t slotCount() const { return m_slots.size(); }
    TabSlot& slot(std::size_t index) { return *m_slots.at(index); }
    ChromeButton& newTabButton() { return m_newTabButton; }

    // The layout, as pure functions of the strip's width, its leading inset and the number of slots.
    // Slots share what is left after the inset and the new-tab button, at most 200 and at least 58 wide
    // (past that they run off the strip's end, which clips them).
    static double slotWidth(double stripWidth, double leadingInset, std::size_t count);
    // The slot under x, clamped to the slots; 0 without slots.
    static int slotIndexAtX(double x, double leadingInset, double slotWidth, std::size_t count);
    // The new-tab button follows the last slot and stops at the strip's end.
    static double newTabButtonX(double stripWidth, double leadingInset, double slotWidth, std::size_t count);

    // The same with the strip's last layout.
    double currentSlotWidth() const { return m_currentSlotWidth; }
    int slotIndex(double x) const;
    // The left edge of slot `index` as laid out now: the dragged slot follows the pointer, held within the
    // first and last places.
    double slotX(std::size_t index) const;

    // The slot being dragged, while a drag is on.
    std::optional<int> dragIndex() const { return m_dragIndex; }

    // What a slot's press gesture calls, x in the strip's coordinates; tests drive them directly.
    void beginPress(int index, double x);
    void dragPointer(double x);
    void endPress();

    // Internal: the widget's vfuncs.
    void snapshot(GtkSnapshot* snapshot);
    void allocate(int width, int height);

private:
    struct Press {
        int index = 0; // the dragged tab's index now
        double startX = 0;
        double grabOffset = 0;
        bool isDragging = false;
    };

    void layoutNow();
    void applyTheme();

    GObjectPtr<GtkWidget> m_widget;
    double m_leadingInset = 12;
    std::vector<Item> m_items;
    int m_activeIndex = 0;
    std::vector<std::unique_ptr<TabSlot>> m_slots;
    ChromeButton m_newTabButton;
    std::optional<int> m_dragIndex;
    double m_dragGrabOffset = 0;
    double m_dragPointerX = 0;
    double m_currentSlotWidth = maximumSlotWidth;
    std::optional<Press> m_press;
    Themed::Token m_themeToken;
};

} // namespace velder
