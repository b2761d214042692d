#include "shell/chrome/AddressBar.h"

#include "core/Palette.h"
#include "shell/chrome/Drawing.h"
#include "shell/chrome/FieldEvents.h"
#include "shell/chrome/FieldStyle.h"
#include "shell/chrome/OwnedWidget.h"

#include <algorithm>
#include <cmath>

using VelderAddressBar = velder::OwnedWidget<velder::AddressBar>;
using VelderAddressBarClass = GtkWidgetClass;
G_DEFINE_TYPE(VelderAddressBar, velder_address_bar, GTK_TYPE_WIDGET)

namespace {

void barMeasure(GtkWidget* widget, GtkOrientation orientation, int forSize, int* minimum, int* natural, int* baseline,
    int* naturalBaseline)
{
    *minimum = *natural = 0;
    *baseline = *naturalBaseline = -1;
    if (auto* bar = velder::ownerOf<velder::AddressBar>(widget)) {
        bar->measure(orientation, forSize, minimum, natural);
    }
}

void barPressed(GtkGestureClick*, int, double x, double y, gpointer widget)
{
    if (auto* bar = velder::ownerOf<velder::AddressBar>(widget)) {
        bar->click(x, y);
    }
}

void barRoot(GtkWidget* widget)
{
    GTK_WIDGET_CLASS(velder_address_bar_parent_class)->root(widget);
    if (auto* bar = velder::ownerOf<velder::AddressBar>(widget)) {
        bar->watchFocus();
    }
}

void barUnroot(GtkWidget* widget)
{
    if (auto* bar = velder::ownerOf<velder::AddressBar>(widget)) {
        bar->unwatchFocus();
    }
    GTK_WIDGET_CLASS(velder_address_bar_parent_class)->unroot(widget);
}

} // namespace

static void velder_address_bar_class_init(VelderAddressBarClass* widgetClass)
{
    widgetClass->snapshot = velder::snapshotByOwner<velder::AddressBar>;
    widgetClass->measure = barMeasure;
    widgetClass->size_allocate = velder::allocateByOwner<velder::AddressBar>;
    widgetClass->root = barRoot;
    widgetClass->unroot = barUnroot;
    G_OBJECT_CLASS(widgetClass)->dispose = velder::disposeWithChildren<velder_address_bar_get_type>;
    gtk_widget_class_set_css_name(widgetClass, "addressbar");
    gtk_widget_class_set_accessible_role(widgetClass, GTK_ACCESSIBLE_ROLE_GROUP);
}

static void velder_address_bar_init(VelderAddressBar* self)
{
    GtkWidget* widget = GTK_WIDGET(self);
    gtk_widget_set_cursor_from_name(widget, "text");
    gtk_widget_set_hexpand(widget, TRUE);
    GtkGesture* click = gtk_gesture_click_new();
    gtk_gesture_single_set_button(GTK_GESTURE_SINGLE(click), GDK_BUTTON_PRIMARY);
    g_signal_connect(click, "pressed", G_CALLBACK(barPressed), self);
    gtk_widget_add_controller(widget, GTK_EVENT_CONTROLLER(click));
}

namespace velder {

AddressBar::AddressBar()
    : m_widget(GObjectPtr<GtkWidget>::adopt(GTK_WIDGET(g_object_new(velder_address_bar_get_type(), nullptr))))
{
    setOwner(m_widget.get(), this);

    m_field = gtk_text_new();
    gtk_text_set_placeholder_text(GTK_TEXT(m_field), placeholder);
    gtk_accessible_update_property(GTK_ACCESSIBLE(m_field), GTK_ACCESSIBLE_PROPERTY_LABEL, "Address", -1);
    gtk_editable_set_width_chars(GTK_EDITABLE(m_field), 1);
    FieldStyle::attach(m_field, FieldStyle::Kind::address);
    // Until editing begins, clicks go to the bar, which selects everything rather than placing the caret.
    gtk_widget_set_can_target(m_field, FALSE);
    gtk_widget_set_parent(m_field, m_widget.get());
    gtk_widget_set_parent(m_pin.widget(), m_widget.get());

    listenToField<AddressBar>(m_field, m_widget.get());

    m_themeToken = Themed::subscribeToTheme(m_widget.get(), [this] { applyTheme(); });
}

AddressBar::~AddressBar()
{
    setOwner<AddressBar>(m_widget.get(), nullptr);
}

// Editing follows the window's focus widget rather than the field's focus events: those also come when
// the whole window loses the keyboard to another, which must not end an edit.
void AddressBar::watchFocus()
{
    GtkRoot* root = gtk_widget_get_root(m_widget.get());
    if (!GTK_IS_WINDOW(root)) {
        return;
    }
    m_focusWatch
        = SignalConnection(root, "notify::focus-widget", G_CALLBACK(+[](GObject*, GParamSpec*, gpointer widget) {
              if (auto* bar = velder::ownerOf<velder::AddressBar>(widget)) {
                  bar->followFocus();
              }
          }),
            m_widget.get());
    followFocus();
}

void AddressBar::unwatchFocus()
{
    m_focusWatch.disconnect();
    // The bar leaves its window: whatever was being typed there is gone with it, and nobody is told.
    if (m_isEditing) {
        m_isEditing = false;
        gtk_widget_set_can_target(m_field, FALSE);
    }
}

void AddressBar::followFocus()
{
    auto* window = GTK_WINDOW(gtk_widget_get_root(m_widget.get()));
    bool focused = window && gtk_window_get_focus(window) == m_field;
    if (focused) {
        beginEditing();
    } else {
        endEditing();
    }
}

std::string AddressBar::text() const
{
    return gtk_editable_get_text(GTK_EDITABLE(m_field));
}

void AddressBar::setText(const std::string& text)
{
    m_isSettingText = true;
    gtk_editable_set_text(GTK_EDITABLE(m_field), text.c_str());
    m_isSettingText = false;
}

void AddressBar::reportTextChange()
{
    if (m_isSettingText) {
        return;
    }
    if (auto changed = onTextChanged) {
        changed(text());
    }
}

void AddressBar::focusAndSelectAll()
{
    gtk_widget_grab_focus(m_field);
    gtk_editable_select_region(GTK_EDITABLE(m_field), 0, -1);
}

void AddressBar::beep()
{
    gtk_widget_error_bell(m_widget.get());
}

double AddressBar::fieldWidth(double barWidth, bool pinShown)
{
    return std::max(barWidth - 10 - (pinShown ? 34 : 10), 0.0);
}

bool AddressBar::handleKey(guint keyval, GdkModifierType modifiers)
{
    // Up and Down with a modifier extend the selection or move by word: the field's own business.
    bool plain = !(modifiers & (GDK_SHIFT_MASK | GDK_CONTROL_MASK | GDK_ALT_MASK | GDK_SUPER_MASK | GDK_META_MASK));
    switch (keyval) {
    case GDK_KEY_Up:
    case GDK_KEY_KP_Up:
    case GDK_KEY_Down:
    case GDK_KEY_KP_Down: {
        auto move = onMoveSelection;
        if (!plain || !move) {
            return false;
        }
        return move(keyval == GDK_KEY_Up || keyval == GDK_KEY_KP_Up ? -1 : 1);
    }
    case GDK_KEY_Return:
    case GDK_KEY_KP_Enter:
    case GDK_KEY_ISO_Enter:
        if (auto commit = onCommit) {
            commit(text());
        }
        return true;
    case GDK_KEY_Escape: {
        auto cancel = onCancel;
        return cancel && cancel();
    }
    default:
        return false;
    }
}

void AddressBar::beginEditing()
{
    if (m_isEditing) {
        return;
    }
    m_isEditing = true;
    gtk_widget_set_can_target(m_field, TRUE);
    gtk_widget_queue_draw(m_widget.get());
    gtk_editable_select_region(GTK_EDITABLE(m_field), 0, -1);
    if (auto changed = onFocusChanged) {
        changed(true);
    }
}

void AddressBar::endEditing()
{
    if (!m_isEditing) {
        return;
    }
    m_isEditing = false;
    gtk_widget_set_can_target(m_field, FALSE);
    // Back to the start of the address, with nothing selected.
    gtk_editable_select_region(GTK_EDITABLE(m_field), 0, 0);
    gtk_widget_queue_draw(m_widget.get());
    if (auto cancel = onCancel) {
        cancel();
    }
    if (auto changed = onFocusChanged) {
        changed(false);
    }
}

void AddressBar::click(double x, double y)
{
    if (m_isEditing) {
        return;
    }
    graphene_rect_t pin;
    if (m_pin.isShown() && gtk_widget_compute_bounds(m_pin.widget(), m_widget.get(), &pin)) {
        graphene_point_t point = GRAPHENE_POINT_INIT(static_cast<float>(x), static_cast<float>(y));
        if (graphene_rect_contains_point(&pin, &point)) {
            return;
        }
    }
    focusAndSelectAll();
}

void AddressBar::applyTheme()
{
    FieldStyle::refresh();
    gtk_widget_queue_draw(m_field);
}

void AddressBar::measure(GtkOrientation orientation, int, int* minimum, int* natural)
{
    if (orientation == GTK_ORIENTATION_HORIZONTAL) {
        *minimum = *natural = 0;
        return;
    }
    int fieldMinimum = 0, fieldNatural = 0;
    gtk_widget_measure(m_field, GTK_ORIENTATION_VERTICAL, -1, &fieldMinimum, &fieldNatural, nullptr, nullptr);
    *minimum = std::max(fieldMinimum, LocationPin::side);
    *natural = std::max(fieldNatural, LocationPin::side);
}

void AddressBar::allocate(int width, int height)
{
    bool pinShown = m_pin.isShown();
    int fieldMinimum = 0, fieldHeight = 0;
    gtk_widget_measure(m_field, GTK_ORIENTATION_VERTICAL, -1, &fieldMinimum, &fieldHeight, nullptr, nullptr);
    GtkAllocation field = { 10, static_cast<int>(std::round((height - fieldHeight) / 2.0)),
        static_cast<int>(fieldWidth(width, pinShown)), fieldHeight };
    gtk_widget_size_allocate(m_field, &field, -1);
    if (pinShown) {
        GtkAllocation pin = { width - 28, static_cast<int>(std::round((height - LocationPin::side) / 2.0)),
            LocationPin::side, LocationPin::side };
        gtk_widget_size_allocate(m_pin.widget(), &pin, -1);
    }
}

void AddressBar::snapshot(GtkSnapshot* snapshot)
{
    GtkWidget* widget = m_widget.get();
    Drawing::fill(snapshot, Palette::fieldColor(), Drawing::bounds(widget));
    gtk_widget_snapshot_child(widget, m_field, snapshot);
    gtk_widget_snapshot_child(widget, m_pin.widget(), snapshot);
}

} // namespace velder
