#include "shell/overlays/LocationPrompt.h"

#include "core/Palette.h"
#include "core/Theme.h"
#include "shell/chrome/Drawing.h"
#include "shell/chrome/FieldStyle.h"
#include "shell/chrome/OwnedWidget.h"
#include "shell/chrome/SymbolCache.h"

#include <algorithm>
#include <cmath>

using VelderLocationPrompt = velder::OwnedWidget<velder::LocationPrompt>;
using VelderLocationPromptClass = GtkWidgetClass;
G_DEFINE_TYPE(VelderLocationPrompt, velder_location_prompt, GTK_TYPE_WIDGET)

namespace {

void promptMeasure(GtkWidget*, GtkOrientation orientation, int, int* minimum, int* natural, int*, int*)
{
    // As wide as the page it lies over, which the overlay gives it; never wider because of its label.
    *minimum = *natural = orientation == GTK_ORIENTATION_HORIZONTAL ? 0 : velder::LocationPrompt::height;
}

// The strip's hairline follows the field colour; a colour too close to it gives way to black or white.
velder::Color hairline()
{
    return velder::Theme::readable(velder::Palette::passiveColor(), velder::Palette::fieldColor());
}

} // namespace

static void velder_location_prompt_class_init(VelderLocationPromptClass* widgetClass)
{
    widgetClass->snapshot = velder::snapshotByOwner<velder::LocationPrompt>;
    widgetClass->measure = promptMeasure;
    widgetClass->size_allocate = velder::allocateByOwner<velder::LocationPrompt>;
    G_OBJECT_CLASS(widgetClass)->dispose = velder::disposeWithChildren<velder_location_prompt_get_type>;
    gtk_widget_class_set_css_name(widgetClass, "locationprompt");
    gtk_widget_class_set_accessible_role(widgetClass, GTK_ACCESSIBLE_ROLE_GROUP);
}

static void velder_location_prompt_init(VelderLocationPrompt*)
{
}

namespace velder {

LocationPrompt::LocationPrompt()
    : m_widget(GObjectPtr<GtkWidget>::adopt(GTK_WIDGET(g_object_new(velder_location_prompt_get_type(), nullptr))))
    , m_allowOnce(ChromeButton::Content::text("Allow once", 12, PANGO_WEIGHT_MEDIUM), "")
    , m_alwaysAllow(ChromeButton::Content::text("Always allow", 12, PANGO_WEIGHT_MEDIUM), "")
    , m_never(ChromeButton::Content::text("Never", 12, PANGO_WEIGHT_MEDIUM), "")
{
    GtkWidget* widget = m_widget.get();
    setOwner(widget, this);
    gtk_widget_set_visible(widget, FALSE);

    m_label = gtk_label_new("");
    gtk_label_set_single_line_mode(GTK_LABEL(m_label), TRUE);
    gtk_label_set_ellipsize(GTK_LABEL(m_label), PANGO_ELLIPSIZE_END);
    gtk_label_set_xalign(GTK_LABEL(m_label), 0);
    FieldStyle::attach(m_label, FieldStyle::Kind::notice);
    gtk_widget_set_parent(m_label, widget);

    const std::pair<ChromeButton*, LocationChoice> buttons[] = { { &m_allowOnce, LocationChoice::allowOnce },
        { &m_alwaysAllow, LocationChoice::alwaysAllow }, { &m_never, LocationChoice::never } };
    for (auto [button, choice] : buttons) {
        button->ink = Theme::onField;
        button->onClick = [this, choice = choice] { pick(choice); };
        gtk_widget_set_parent(button->widget(), widget);
    }
    m_never.hoverInk = [] { return Theme::destructive; };

    m_themeToken = Themed::subscribeToTheme(widget, [this] { applyTheme(); });
}

LocationPrompt::~LocationPrompt()
{
    setOwner<LocationPrompt>(m_widget.get(), nullptr);
}

void LocationPrompt::pick(LocationChoice choice)
{
    if (auto handler = onChoice) {
        handler(choice);
    }
}

void LocationPrompt::show(const std::string& origin)
{
    std::string text = origin + " wants to know your location";
    gtk_label_set_text(GTK_LABEL(m_label), text.c_str());
    gtk_accessible_update_property(GTK_ACCESSIBLE(m_widget.get()), GTK_ACCESSIBLE_PROPERTY_LABEL, text.c_str(), -1);
    gtk_widget_set_visible(m_widget.get(), TRUE);
    gtk_widget_queue_allocate(m_widget.get());
}

void LocationPrompt::hide()
{
    gtk_widget_set_visible(m_widget.get(), FALSE);
    gtk_label_set_text(GTK_LABEL(m_label), "");
}

void LocationPrompt::applyTheme()
{
    FieldStyle::refresh();
    gtk_widget_queue_draw(m_widget.get());
}

void LocationPrompt::allocate(int width, int height)
{
    // From the right: Never, Always allow, Allow once, each as wide as its title and 18 more, 4 apart.
    double right = width - 12;
    for (ChromeButton* button : { &m_never, &m_alwaysAllow, &m_allowOnce }) {
        double buttonWidth = std::ceil(button->contentWidth()) + 18;
        right -= buttonWidth;
        placeChild(button->widget(), right, (height - 24) / 2.0, buttonWidth, 24);
        right -= 4;
    }
    int minimum = 0;
    int labelHeight = 0;
    gtk_widget_measure(m_label, GTK_ORIENTATION_VERTICAL, -1, &minimum, &labelHeight, nullptr, nullptr);
    placeChild(m_label, 36, (height - labelHeight) / 2.0, std::max(right - 8 - 36, 0.0), labelHeight);
}

void LocationPrompt::snapshot(GtkSnapshot* snapshot)
{
    GtkWidget* widget = m_widget.get();
    graphene_rect_t bounds = Drawing::bounds(widget);
    Drawing::fill(snapshot, Palette::fieldColor(), bounds);
    Drawing::fill(snapshot, hairline().withAlpha(0.45), Drawing::rect(0, bounds.size.height - 1, bounds.size.width, 1));
    constexpr double iconSide = 16;
    int scale = gtk_widget_get_scale_factor(widget);
    if (GdkPaintable* icon = SymbolCache::image("mark-location-symbolic", 12, PANGO_WEIGHT_MEDIUM, scale)) {
        SymbolCache::draw(snapshot, icon, 12, std::round((bounds.size.height - iconSide) / 2), iconSide, Theme::pinLit);
    }
    for (GtkWidget* child = gtk_widget_get_first_child(widget); child; child = gtk_widget_get_next_sibling(child)) {
        gtk_widget_snapshot_child(widget, child, snapshot);
    }
}

} // namespace velder
