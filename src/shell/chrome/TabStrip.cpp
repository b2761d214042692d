#include "shell/chrome/TabStrip.h"

#include "core/Palette.h"
#include "core/Theme.h"
#include "shell/chrome/Drawing.h"
#include "shell/chrome/OwnedWidget.h"
#include "shell/chrome/TabSlot.h"

#include <algorithm>
#include <cmath>

using VelderTabStrip = velder::OwnedWidget<velder::TabStrip>;
using VelderTabStripClass = GtkWidgetClass;
G_DEFINE_TYPE(VelderTabStrip, velder_tab_strip, GTK_TYPE_WIDGET)

namespace {

void stripMeasure(GtkWidget*, GtkOrientation orientation, int, int* minimum, int* natural, int*, int*)
{
    // The strip takes whatever width the title bar leaves it, and clips what doesn't fit.
    if (orientation == GTK_ORIENTATION_HORIZONTAL) {
        *minimum = *natural = 0;
    } else {
        *minimum = velder::TabStrip::newTabButtonHeight;
        *natural = 28;
    }
}

} // namespace

static void velder_tab_strip_class_init(VelderTabStripClass* widgetClass)
{
    widgetClass->snapshot = velder::snapshotByOwner<velder::TabStrip>;
    widgetClass->size_allocate = velder::allocateByOwner<velder::TabStrip>;
    widgetClass->measure = stripMeasure;
    G_OBJECT_CLASS(widgetClass)->dispose = velder::disposeWithChildren<velder_tab_strip_get_type>;
    gtk_widget_class_set_css_name(widgetClass, "tabstrip");
    gtk_widget_class_set_accessible_role(widgetClass, GTK_ACCESSIBLE_ROLE_TAB_LIST);
}

static void velder_tab_strip_init(VelderTabStrip* self)
{
    gtk_widget_set_overflow(GTK_WIDGET(self), GTK_OVERFLOW_HIDDEN);
    gtk_widget_set_hexpand(GTK_WIDGET(self), TRUE);
    // The wheel, or a touchpad's scroll in whole steps, over the strip walks the tabs, as Linux browsers do:
    // the only way to the slots clipped under the "+" besides the keys.
    GtkEventController* scroll = gtk_event_controller_scroll_new(
        GtkEventControllerScrollFlags(GTK_EVENT_CONTROLLER_SCROLL_VERTICAL | GTK_EVENT_CONTROLLER_SCROLL_DISCRETE));
    g_signal_connect(scroll, "scroll",
        G_CALLBACK(+[](GtkEventControllerScroll*, double, double dy, gpointer widget) -> gboolean {
            auto* strip = velder::ownerOf<velder::TabStrip>(widget);
            return strip && dy != 0 && strip->step(dy > 0 ? 1 : -1);
        }),
        self);
    gtk_widget_add_controller(GTK_WIDGET(self), scroll);
}

namespace velder {

TabStrip::TabStrip()
    : m_widget(GObjectPtr<GtkWidget>::adopt(GTK_WIDGET(g_object_new(velder_tab_strip_get_type(), nullptr))))
    , m_newTabButton(ChromeButton::Content::symbol("list-add-symbolic"), "New Tab")
{
    setOwner(m_widget.get(), this);
    m_newTabButton.ink = [] { return Theme::readable(Palette::passiveColor(), Palette::borderColor()); };
    m_newTabButton.background = [] { return Palette::borderColor(); };
    m_newTabButton.onClick = [this] {
        if (auto newTab = onNewTab) {
            newTab();
        }
    };
    gtk_widget_set_parent(m_newTabButton.widget(), m_widget.get());
    m_themeToken = Themed::subscribeToTheme(m_widget.get(), [this] { applyTheme(); });
}

TabStrip::~TabStrip()
{
    setOwner<TabStrip>(m_widget.get(), nullptr);
}

bool TabStrip::step(int direction)
{
    int target = m_activeIndex + direction;
    if (target < 0 || target >= static_cast<int>(m_items.size())) {
        return true; // the ends don't wrap, and the wheel goes no further
    }
    if (auto select = onSelect) {
        select(target);
    }
    return true;
}

void TabStrip::setLeadingInset(double inset)
{
    m_leadingInset = inset;
    gtk_widget_queue_allocate(m_widget.get());
}

void TabStrip::setTabs(std::vector<Item> items, int activeIndex)
{
    m_items = std::move(items);
    int count = static_cast<int>(m_items.size());
    m_activeIndex = std::max(std::min(activeIndex, count - 1), 0);

    while (m_slots.size() < m_items.size()) {
        auto slot = std::make_unique<TabSlot>(*this);
        gtk_widget_insert_before(slot->widget(), m_widget.get(), m_newTabButton.widget());
        m_slots.push_back(std::move(slot));
    }
    while (m_slots.size() > m_items.size()) {
        gtk_widget_unparent(m_slots.back()->widget());
        m_slots.pop_back();
    }
    for (int i = 0; i < count; ++i) {
        m_slots[i]->configure(i, m_items[i].title, m_items[i].address, i == m_activeIndex);
    }
    if (m_dragIndex && *m_dragIndex >= count) {
        m_dragIndex.reset();
    }
    layoutNow();
    gtk_widget_queue_draw(m_widget.get());
}

double TabStrip::slotWidth(double stripWidth, double leadingInset, std::size_t count)
{
    if (count == 0) {
        return maximumSlotWidth;
    }
    double available = std::max(stripWidth - leadingInset - newTabButtonWidth - 6, 0.0);
    return std::clamp(available / static_cast<double>(count), minimumSlotWidth, maximumSlotWidth);
}

int TabStrip::slotIndexAtX(double x, double leadingInset, double slotWidth, std::size_t count)
{
    if (count == 0) {
        return 0;
    }
    double index = std::floor((x - leadingInset) / std::max(slotWidth, 1.0));
    return static_cast<int>(std::clamp(index, 0.0, static_cast<double>(count - 1)));
}

double TabStrip::newTabButtonX(double stripWidth, double leadingInset, double slotWidth, std::size_t count)
{
    return std::min(stripWidth - newTabButtonWidth - 6, leadingInset + slotWidth * static_cast<double>(count) + 2);
}

int TabStrip::slotIndex(double x) const
{
    return slotIndexAtX(x, m_leadingInset, m_currentSlotWidth, m_slots.size());
}

double TabStrip::slotX(std::size_t index) const
{
    if (m_dragIndex && static_cast<std::size_t>(*m_dragIndex) == index && index < m_slots.size()) {
        double last = m_leadingInset + m_currentSlotWidth * static_cast<double>(m_slots.size() - 1);
        return std::clamp(m_dragPointerX - m_dragGrabOffset, m_leadingInset, last);
    }
    return m_leadingInset + m_currentSlotWidth * static_cast<double>(index);
}

void TabStrip::beginPress(int index, double x)
{
    m_press.reset();
    if (auto select = onSelect) {
        select(index);
    }
    if (!gtk_widget_get_root(m_widget.get())) {
        m_dragIndex.reset();
        return;
    }
    m_press = Press { index, x, x - (m_leadingInset + m_currentSlotWidth * index), false };
}

void TabStrip::dragPointer(double x)
{
    if (!m_press) {
        return;
    }
    if (!m_press->isDragging) {
        // A plain click, however shaky, never starts a drag.
        if (std::abs(x - m_press->startX) <= dragThreshold) {
            return;
        }
        m_press->isDragging = true;
        m_dragGrabOffset = m_press->grabOffset;
    }
    m_dragPointerX = x;
    m_dragIndex = m_press->index;
    int target = slotIndex(x);
    if (target != m_press->index) {
        int from = m_press->index;
        m_press->index = target;
        m_dragIndex = target;
        if (auto reorder = onReorder) {
            reorder(from, target);
        }
    }
    layoutNow();
}

void TabStrip::endPress()
{
    m_press.reset();
    m_dragIndex.reset();
    layoutNow();
}

void TabStrip::layoutNow()
{
    gtk_widget_queue_allocate(m_widget.get());
}

void TabStrip::applyTheme()
{
    for (auto& slot : m_slots) {
        gtk_widget_queue_draw(slot->widget());
    }
}

void TabStrip::allocate(int width, int height)
{
    std::size_t count = m_slots.size();
    m_currentSlotWidth = slotWidth(width, m_leadingInset, count);
    for (std::size_t i = 0; i < count; ++i) {
        // Whole pixels keep the bodies' outlines crisp; each slot leaves a 1-pixel gap before the next.
        double x = slotX(i);
        int left = static_cast<int>(std::round(x));
        int right = static_cast<int>(std::round(x + m_currentSlotWidth));
        GtkAllocation frame = { left, 0, std::max(right - left - 1, 0), height };
        gtk_widget_size_allocate(m_slots[i]->widget(), &frame, -1);
    }
    GtkAllocation button = { static_cast<int>(
                                 std::round(newTabButtonX(width, m_leadingInset, m_currentSlotWidth, count))),
        static_cast<int>(std::round((height - newTabButtonHeight) / 2.0)), newTabButtonWidth, newTabButtonHeight };
    gtk_widget_size_allocate(m_newTabButton.widget(), &button, -1);
}

void TabStrip::snapshot(GtkSnapshot* snapshot)
{
    GtkWidget* widget = m_widget.get();
    Drawing::fill(snapshot, Palette::borderColor(), Drawing::bounds(widget));
    // The dragged slot goes over the others and under the new-tab button.
    for (std::size_t i = 0; i < m_slots.size(); ++i) {
        if (!m_dragIndex || static_cast<std::size_t>(*m_dragIndex) != i) {
            gtk_widget_snapshot_child(widget, m_slots[i]->widget(), snapshot);
        }
    }
    if (m_dragIndex && static_cast<std::size_t>(*m_dragIndex) < m_slots.size()) {
        gtk_widget_snapshot_child(widget, m_slots[*m_dragIndex]->widget(), snapshot);
    }
    gtk_widget_snapshot_child(widget, m_newTabButton.widget(), snapshot);
}

} // namespace velder
