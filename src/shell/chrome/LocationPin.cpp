#include "shell/chrome/LocationPin.h"

#include "core/LocationSettings.h"
#include "core/Theme.h"
#include "core/Vault.h"
#include "shell/chrome/Drawing.h"
#include "shell/chrome/MenuBuilder.h"
#include "shell/chrome/OwnedWidget.h"
#include "shell/chrome/PopupMenu.h"
#include "shell/chrome/SymbolCache.h"

#include <cmath>
#include <string_view>

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

// The pin menu's actions, as its items name them ("pin.never").
constexpr const char* actionNames[] = { "origin", "allowOnce", "alwaysAllow", "never", "services" };

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
    , m_actions(GObjectPtr<GSimpleActionGroup>::adopt(g_simple_action_group_new()))
{
    setOwner(m_widget.get(), this);
    gtk_widget_set_visible(m_widget.get(), FALSE);
    addActions();
    describe();
}

LocationPin::~LocationPin()
{
    // The widget may outlive the pin in its parent: its menu's actions must not reach the pin any more.
    gtk_widget_insert_action_group(m_widget.get(), "pin", nullptr);
    for (const char* name : actionNames) {
        g_signal_handlers_disconnect_by_data(g_action_map_lookup_action(G_ACTION_MAP(m_actions.get()), name), this);
    }
    setOwner<LocationPin>(m_widget.get(), nullptr);
}

void LocationPin::addActions()
{
    // The menu's items. The answers that can be checked, and the switch, carry a boolean state.
    for (const char* name : actionNames) {
        bool checkable = std::string_view(name) != "origin" && std::string_view(name) != "allowOnce";
        GSimpleAction* action = checkable ? g_simple_action_new_stateful(name, nullptr, g_variant_new_boolean(FALSE))
                                          : g_simple_action_new(name, nullptr);
        g_simple_action_set_enabled(action, std::string_view(name) != "origin"); // the origin is a title
        g_signal_connect(action, "activate", G_CALLBACK(+[](GSimpleAction* action, GVariant*, gpointer pin) {
            static_cast<LocationPin*>(pin)->activate(g_action_get_name(G_ACTION(action)));
        }),
            this);
        g_action_map_add_action(G_ACTION_MAP(m_actions.get()), G_ACTION(action));
        g_object_unref(action);
    }
    gtk_widget_insert_action_group(m_widget.get(), "pin", G_ACTION_GROUP(m_actions.get()));
}

void LocationPin::activate(std::string_view name)
{
    if (name == "services") {
        GVariant* state = g_action_group_get_action_state(G_ACTION_GROUP(m_actions.get()), "services");
        bool on = g_variant_get_boolean(state);
        g_variant_unref(state);
        if (auto toggle = onToggleGlobalSwitch) {
            toggle(!on);
        }
        return;
    }
    std::optional<LocationChoice> choice;
    if (name == "allowOnce") {
        choice = LocationChoice::allowOnce;
    } else if (name == "alwaysAllow") {
        choice = LocationChoice::alwaysAllow;
    } else if (name == "never") {
        choice = LocationChoice::never;
    }
    if (auto pick = onChoice; pick && choice) {
        pick(*choice);
    }
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

void LocationPin::refreshVisibility()
{
    bool origin = currentOrigin && currentOrigin().has_value();
    gtk_widget_set_visible(m_widget.get(), Vault::shared().snapshot()->settings.locationEnabled && origin);
    describe();
}

GObjectPtr<GMenuModel> LocationPin::buildMenu()
{
    std::optional<std::string> origin = currentOrigin ? currentOrigin() : std::nullopt;
    LocationAnswer stored = origin ? LocationSettings::shared().effective(*origin) : LocationAnswer::ask;
    auto set = [this](const char* name, bool enabled, std::optional<bool> checked) {
        GAction* action = g_action_map_lookup_action(G_ACTION_MAP(m_actions.get()), name);
        g_simple_action_set_enabled(G_SIMPLE_ACTION(action), enabled);
        if (checked) {
            g_simple_action_set_state(G_SIMPLE_ACTION(action), g_variant_new_boolean(*checked));
        }
    };
    set("allowOnce", origin.has_value(), std::nullopt);
    set("alwaysAllow", origin.has_value(), stored == LocationAnswer::allow);
    set("never", origin.has_value(), stored == LocationAnswer::block);
    set("services", true, Vault::shared().snapshot()->settings.locationEnabled);

    MenuBuilder menu;
    if (origin) {
        menu.section().item(origin->c_str(), "pin.origin", nullptr);
    }
    menu.section()
        .item("Allow once", "pin.allowOnce", nullptr)
        .item("Always allow", "pin.alwaysAllow", nullptr)
        .item("Never", "pin.never", nullptr);
    menu.section().item("Location services", "pin.services", nullptr).custom("explanation");
    return menu.build();
}

void LocationPin::press()
{
    GObjectPtr<GMenuModel> menu = buildMenu();
    GtkWidget* widget = m_widget.get();
    PopupMenu::popup(widget, menu.get(), 0, gtk_widget_get_height(widget) + 4);
    // Popover menus show no tooltips: the switch's explanation is a line of its own under it.
    if (GtkPopover* popover = PopupMenu::openMenu(widget)) {
        GtkWidget* explanation = gtk_label_new(servicesExplanation);
        gtk_label_set_wrap(GTK_LABEL(explanation), TRUE);
        gtk_label_set_max_width_chars(GTK_LABEL(explanation), 30);
        gtk_label_set_xalign(GTK_LABEL(explanation), 0);
        gtk_widget_add_css_class(explanation, "dim-label");
        gtk_widget_add_css_class(explanation, "caption");
        gtk_widget_set_margin_start(explanation, 12);
        gtk_widget_set_margin_end(explanation, 12);
        gtk_widget_set_margin_bottom(explanation, 4);
        gtk_popover_menu_add_child(GTK_POPOVER_MENU(popover), explanation, "explanation");
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
