#include "shell/chrome/TabSlot.h"

#include "core/Palette.h"
#include "core/Theme.h"
#include "shell/chrome/Drawing.h"
#include "shell/chrome/KeyboardFocus.h"
#include "shell/chrome/OwnedWidget.h"
#include "shell/chrome/PopupMenu.h"
#include "shell/chrome/TabStrip.h"

#include <cmath>

using VelderTabSlot = velder::OwnedWidget<velder::TabSlot>;
using VelderTabSlotClass = GtkWidgetClass;
G_DEFINE_TYPE(VelderTabSlot, velder_tab_slot, GTK_TYPE_WIDGET)

namespace {

using velder::TabSlot;

void slotSizeAllocate(GtkWidget* widget, int width, int height, int baseline)
{
    velder::allocateByOwner<TabSlot>(widget, width, height, baseline);
    velder::PopupMenu::presentAll(widget);
}

// The pointer's x in the strip's coordinates. The slot may have moved since the press (it follows the
// drag, or another slot took its place), so the point is taken afresh from the last event.
std::optional<double> pointerXInStrip(GtkGesture* gesture, GtkWidget* widget)
{
    double x = 0, y = 0;
    GdkEventSequence* sequence = gtk_gesture_single_get_current_sequence(GTK_GESTURE_SINGLE(gesture));
    GtkWidget* strip = gtk_widget_get_parent(widget);
    if (!strip || !gtk_gesture_get_point(gesture, sequence, &x, &y)) {
        return std::nullopt;
    }
    graphene_point_t local = GRAPHENE_POINT_INIT(static_cast<float>(x), static_cast<float>(y));
    graphene_point_t inStrip;
    if (!gtk_widget_compute_point(widget, strip, &local, &inStrip)) {
        return std::nullopt;
    }
    return inStrip.x;
}

void dragBegan(GtkGestureDrag* gesture, double, double, gpointer widget)
{
    // A press on a slot is the strip's: it must not drag the window.
    gtk_gesture_set_state(GTK_GESTURE(gesture), GTK_EVENT_SEQUENCE_CLAIMED);
    auto x = pointerXInStrip(GTK_GESTURE(gesture), GTK_WIDGET(widget));
    if (auto* slot = velder::ownerOf<TabSlot>(widget); slot && x) {
        slot->strip().beginPress(slot->index(), *x);
    }
}

void dragUpdated(GtkGestureDrag* gesture, double, double, gpointer widget)
{
    auto x = pointerXInStrip(GTK_GESTURE(gesture), GTK_WIDGET(widget));
    if (auto* slot = velder::ownerOf<TabSlot>(widget); slot && x) {
        slot->strip().dragPointer(*x);
    }
}

void dragEnded(GtkGestureDrag*, double, double, gpointer widget)
{
    if (auto* slot = velder::ownerOf<TabSlot>(widget)) {
        slot->strip().endPress();
    }
}

void dragCancelled(GtkGesture*, GdkEventSequence*, gpointer widget)
{
    dragEnded(nullptr, 0, 0, widget);
}

void claim(GtkGestureClick* gesture, int, double, double, gpointer)
{
    gtk_gesture_set_state(GTK_GESTURE(gesture), GTK_EVENT_SEQUENCE_CLAIMED);
}

void middleReleased(GtkGestureClick*, int, double x, double y, gpointer widget)
{
    if (auto* slot = velder::ownerOf<TabSlot>(widget)) {
        slot->middleButtonReleased(x, y);
    }
}

void secondaryPressed(GtkGestureClick* gesture, int, double x, double y, gpointer widget)
{
    claim(gesture, 0, x, y, widget);
    if (auto* slot = velder::ownerOf<TabSlot>(widget)) {
        slot->openContextMenu(x, y);
    }
}

} // namespace

static void velder_tab_slot_class_init(VelderTabSlotClass* widgetClass)
{
    widgetClass->snapshot = velder::snapshotByOwner<TabSlot>;
    widgetClass->size_allocate = slotSizeAllocate;
    G_OBJECT_CLASS(widgetClass)->dispose = velder::disposeWithChildren<velder_tab_slot_get_type>;
    gtk_widget_class_set_css_name(widgetClass, "tabslot");
    gtk_widget_class_set_accessible_role(widgetClass, GTK_ACCESSIBLE_ROLE_TAB);
}

static void velder_tab_slot_init(VelderTabSlot* self)
{
    GtkWidget* widget = GTK_WIDGET(self);
    velder::addHoverTracking<TabSlot>(widget);

    GtkGesture* drag = gtk_gesture_drag_new();
    gtk_gesture_single_set_button(GTK_GESTURE_SINGLE(drag), GDK_BUTTON_PRIMARY);
    g_signal_connect(drag, "drag-begin", G_CALLBACK(dragBegan), self);
    g_signal_connect(drag, "drag-update", G_CALLBACK(dragUpdated), self);
    g_signal_connect(drag, "drag-end", G_CALLBACK(dragEnded), self);
    g_signal_connect(drag, "cancel", G_CALLBACK(dragCancelled), self);
    gtk_widget_add_controller(widget, GTK_EVENT_CONTROLLER(drag));

    GtkGesture* middle = gtk_gesture_click_new();
    gtk_gesture_single_set_button(GTK_GESTURE_SINGLE(middle), GDK_BUTTON_MIDDLE);
    g_signal_connect(middle, "pressed", G_CALLBACK(claim), self);
    g_signal_connect(middle, "released", G_CALLBACK(middleReleased), self);
    gtk_widget_add_controller(widget, GTK_EVENT_CONTROLLER(middle));

    GtkGesture* secondary = gtk_gesture_click_new();
    gtk_gesture_single_set_button(GTK_GESTURE_SINGLE(secondary), GDK_BUTTON_SECONDARY);
    g_signal_connect(secondary, "pressed", G_CALLBACK(secondaryPressed), self);
    gtk_widget_add_controller(widget, GTK_EVENT_CONTROLLER(secondary));

    velder::KeyboardFocus::enable(widget, [widget] {
        if (auto* slot = velder::ownerOf<TabSlot>(widget); slot && slot->strip().onSelect) {
            slot->strip().onSelect(slot->index());
        }
    });
}

namespace velder {

TabSlot::TabSlot(TabStrip& strip)
    : m_widget(GObjectPtr<GtkWidget>::adopt(GTK_WIDGET(g_object_new(velder_tab_slot_get_type(), nullptr))))
    , m_strip(strip)
    , m_closeButton(ChromeButton::Content::symbol("window-close-symbolic"), "Close Tab")
{
    setOwner(m_widget.get(), this);

    m_closeButton.setFocusable(false); // Ctrl+W closes the tab the keyboard is on
    m_closeButton.setSymbolPointSize(9);
    m_closeButton.setSymbolWeight(PANGO_WEIGHT_SEMIBOLD);
    m_closeButton.setDrawsHoverBackground(false);
    m_closeButton.ink = [this] {
        return Theme::readable(Palette::passiveColor(), m_isActive ? Palette::fieldColor() : Palette::borderColor());
    };
    m_closeButton.hoverInk = [] { return Theme::destructive; };
    m_closeButton.onClick = [this] {
        if (auto close = m_strip.onClose) {
            close(m_index);
        }
    };
    gtk_widget_set_parent(m_closeButton.widget(), m_widget.get());
}

TabSlot::~TabSlot()
{
    setOwner<TabSlot>(m_widget.get(), nullptr);
}

void TabSlot::configure(int index, const std::string& title, const std::string& address, bool isActive)
{
    m_index = index;
    bool retitled = title != m_title || address != m_address;
    bool changed = retitled || isActive != m_isActive;
    m_title = title;
    m_address = address;
    m_isActive = isActive;
    // The window re-titles every slot on each refresh; a tooltip set again would be looked up again. One that
    // shows while another tab slides under the pointer is asked again at once, so it never names the old tab.
    if (retitled) {
        std::string tip = address.empty() || address == title ? title : title + "\n" + address;
        gtk_widget_set_tooltip_text(m_widget.get(), tip.empty() ? nullptr : tip.c_str());
        gtk_widget_trigger_tooltip_query(m_widget.get());
        gtk_accessible_update_property(
            GTK_ACCESSIBLE(m_widget.get()), GTK_ACCESSIBLE_PROPERTY_LABEL, title.c_str(), -1);
    }
    gtk_accessible_update_state(GTK_ACCESSIBLE(m_widget.get()), GTK_ACCESSIBLE_STATE_SELECTED, isActive, -1);
    applyCloseButtonRule();
    if (changed) {
        gtk_widget_queue_draw(m_widget.get());
        gtk_widget_queue_draw(m_closeButton.widget());
    }
}

bool TabSlot::showsCloseButton(double width, bool isHovered, bool isActive)
{
    return width >= 46 || isHovered || isActive;
}

void TabSlot::applyCloseButtonRule()
{
    bool shown = showsCloseButton(gtk_widget_get_width(m_widget.get()), m_isHovered, m_isActive);
    if (shown != m_isCloseButtonShown) {
        m_isCloseButtonShown = shown;
        gtk_widget_set_child_visible(m_closeButton.widget(), shown);
        gtk_widget_queue_draw(m_widget.get());
    }
}

void TabSlot::pointerEntered()
{
    if (!m_isHovered) {
        m_isHovered = true;
        applyCloseButtonRule();
        gtk_widget_queue_draw(m_widget.get());
    }
}

void TabSlot::pointerLeft()
{
    if (m_isHovered) {
        m_isHovered = false;
        applyCloseButtonRule();
        gtk_widget_queue_draw(m_widget.get());
    }
}

void TabSlot::middleButtonReleased(double x, double y)
{
    if (Drawing::contains(m_widget.get(), x, y)) {
        if (auto close = m_strip.onClose) {
            close(m_index);
        }
    }
}

bool TabSlot::openContextMenu(double x, double y)
{
    auto provider = m_strip.onContextMenu;
    if (!provider) {
        return false;
    }
    auto menu = provider(m_index);
    if (!menu) {
        return false;
    }
    PopupMenu::popup(m_widget.get(), menu.get(), x, y);
    return true;
}

void TabSlot::allocate(int width, int height)
{
    applyCloseButtonRule();
    double side = closeButtonSize;
    GtkAllocation frame = { width - 24, static_cast<int>(std::round((height - side) / 2)), static_cast<int>(side),
        static_cast<int>(side) };
    gtk_widget_size_allocate(m_closeButton.widget(), &frame, -1);
}

void TabSlot::snapshot(GtkSnapshot* snapshot)
{
    GtkWidget* widget = m_widget.get();
    double width = gtk_widget_get_width(widget);
    double height = gtk_widget_get_height(widget);
    Color field = Palette::fieldColor();
    Color border = Palette::borderColor();

    graphene_rect_t body = Drawing::rect(0, 3, width, height - 6);
    if (m_isActive) {
        Drawing::fillRounded(snapshot, field, body, 7);
        Drawing::strokeRounded(snapshot, Palette::highlightColor(), Drawing::inset(body, 0.5, 0.5), 7, 1);
    } else if (m_isHovered) {
        Drawing::fillRounded(snapshot, Theme::shade(border, 0.18), body, 7);
    }
    if (KeyboardFocus::showsRing(widget)) {
        // Round the body, clear of the active tab's own outline.
        Drawing::strokeRounded(snapshot, KeyboardFocus::ringColor(border), Drawing::inset(body, -2, -2), 9, 2);
    }

    double titleWidth = std::max(width - 10 - (m_isCloseButtonShown ? 26 : 8), 0.0);
    auto layout = Drawing::textLayout(widget, m_title, titlePixelSize, PANGO_WEIGHT_NORMAL, titleWidth);
    double textHeight = Drawing::layoutSize(layout.get()).height;
    Color title
        = m_isActive ? Theme::readable(Palette::textColor(), field) : Theme::readable(Palette::passiveColor(), border);
    Drawing::drawLayout(snapshot, layout.get(), 10, std::round((height - textHeight) / 2) - 1, title);

    gtk_widget_snapshot_child(widget, m_closeButton.widget(), snapshot);
}

} // namespace velder
