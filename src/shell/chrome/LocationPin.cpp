#include "shell/chrome/LocationPin.h"

#include "core/Theme.h"
#include "shell/chrome/Drawing.h"
#include "shell/chrome/OwnedWidget.h"
#include "shell/chrome/PopupMenu.h"
#include "shell/chrome/SymbolCache.h"

#include <cmath>

using VelderLocationPin = velder::OwnedWidget<velder::LocationPin>;
using VelderLocationPinClass = GtkWidgetClass;
G_DEFINE_TYPE(VelderLocationPin, velder_location_pin, GTK_TYPE_WIDGET)

namespace {

using velder::LocationPin;

void pinMeasure(GtkWidget*, GtkOrientation, int, int* minimum, int* natural, int*, int*)
{
    *minimum = *natural = velder::LocationPin::side;
}

void pinSizeAllocate(GtkWidget* widget, int, int, int)
{
    velder::PopupMenu::presentAll(widget);
}

void pressed(GtkGestureClick* gesture, int, double, double, gpointer widget)
{
    // The pin's press is its own: the address bar under it must not start editing.
    gtk_gesture_set_state(GTK_GESTURE(gesture), GTK_EVENT_SEQUENCE_CLAIMED);
    if (auto* pin = velder::ownerOf<LocationPin>(widget)) {
        pin->press();
    }
}

} // namespace

static void velder_location_pin_class_init(VelderLocationPinClass* widgetClass)
{
    widgetClass->snapshot = velder::snapshotByOwner<LocationPin>;
    widgetClass->measure = pinMeasure;
    widgetClass->size_allocate = pinSizeAllocate;
    G_OBJECT_CLASS(widgetClass)->dispose = velder::disposeWithChildren<velder_location_pin_get_type>;
    gtk_widget_class_set_css_name(widgetClass, "locationpin");
    gtk_widget_class_set_accessible_role(widgetClass, GTK_ACCESSIBLE_ROLE_BUTTON);
}

static void velder_location_pin_init(VelderLocationPin* self)
{
    GtkWidget* widget = GTK_WIDGET(self);
    gtk_widget_set_focusable(widget, FALSE);
    gtk_widget_set_focus_on_click(widget, FALSE);
    GtkGesture* click = gtk_gesture_click_new();
    gtk_gesture_single_set_button(GTK_GESTURE_SINGLE(click), GDK_BUTTON_PRIMARY);
    g_signal_connect(click, "pressed", G_CALLBACK(pressed), self);
    gtk_widget_add_controller(widget, GTK_EVENT_CONTROLLER(click));
}

namespace velder {

LocationPin::LocationPin()
    : m_widget(GObjectPtr<GtkWidget>::adopt(GTK_WIDGET(g_object_new(velder_location_pin_get_type(), nullptr))))
{
    setOwner(m_widget.get(), this);
    gtk_widget_set_visible(m_widget.get(), FALSE);
    describe();
}

LocationPin::~LocationPin()
{
    setOwner<LocationPin>(m_widget.get(), nullptr);
}

void LocationPin::setLit(bool lit)
{
    if (lit == m_isLit) {
        return;
    }
    m_isLit = lit;
    describe();
    gtk_widget_queue_draw(m_widget.get());
}

void LocationPin::setShown(bool shown)
{
    gtk_widget_set_visible(m_widget.get(), shown);
}

void LocationPin::press()
{
    if (auto handler = onPress) {
        handler();
    }
}

void LocationPin::describe()
{
    const char* label = m_isLit ? "Location allowed" : "Location not allowed";
    const char* tooltip = m_isLit ? "This site can see your location" : "This site cannot see your location";
    gtk_accessible_update_property(GTK_ACCESSIBLE(m_widget.get()), GTK_ACCESSIBLE_PROPERTY_LABEL, label, -1);
    gtk_widget_set_tooltip_text(m_widget.get(), tooltip);
}

void LocationPin::snapshot(GtkSnapshot* snapshot)
{
    GtkWidget* widget = m_widget.get();
    double side = SymbolCache::pixelSize(symbolPointSize);
    double x = std::round((gtk_widget_get_width(widget) - side) / 2);
    double y = std::round((gtk_widget_get_height(widget) - side) / 2);
    Color color = m_isLit ? Theme::pinLit : Theme::pinDark;
    if (m_isLit) {
        graphene_rect_t halo = Drawing::rect(x - 4, y - 4, side + 8, side + 8);
        Drawing::fillRounded(snapshot, Theme::pinLit.withAlpha(0.22), halo, (side + 8) / 2);
    }
    int scale = gtk_widget_get_scale_factor(widget);
    SymbolCache::draw(snapshot,
        SymbolCache::image("mark-location-symbolic", symbolPointSize, PANGO_WEIGHT_MEDIUM, scale), x, y, side, color);
}

} // namespace velder
