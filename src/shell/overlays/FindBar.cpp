#include "shell/overlays/FindBar.h"

#include "core/Palette.h"
#include "core/Theme.h"
#include "shell/chrome/Drawing.h"
#include "shell/chrome/FieldEvents.h"
#include "shell/chrome/FieldStyle.h"
#include "shell/chrome/OwnedWidget.h"

#include <algorithm>
#include <cmath>
#include <utility>

using VelderFindBar = velder::OwnedWidget<velder::FindBar>;
using VelderFindBarClass = GtkWidgetClass;
G_DEFINE_TYPE(VelderFindBar, velder_find_bar, GTK_TYPE_WIDGET)

namespace {

void barMeasure(GtkWidget*, GtkOrientation orientation, int, int* minimum, int* natural, int*, int*)
{
    *minimum = *natural = orientation == GTK_ORIENTATION_HORIZONTAL ? velder::FindBar::width : velder::FindBar::height;
}

// Keys that move the caret: the user places it, and the text stays.
bool isCaretKey(guint keyval)
{
    switch (keyval) {
    case GDK_KEY_Left:
    case GDK_KEY_Right:
    case GDK_KEY_Home:
    case GDK_KEY_End:
    case GDK_KEY_KP_Left:
    case GDK_KEY_KP_Right:
    case GDK_KEY_KP_Home:
    case GDK_KEY_KP_End:
        return true;
    default:
        return false;
    }
}

} // namespace

static void velder_find_bar_class_init(VelderFindBarClass* widgetClass)
{
    widgetClass->snapshot = velder::snapshotByOwner<velder::FindBar>;
    widgetClass->measure = barMeasure;
    widgetClass->size_allocate = velder::allocateByOwner<velder::FindBar>;
    G_OBJECT_CLASS(widgetClass)->dispose = velder::disposeWithChildren<velder_find_bar_get_type>;
    gtk_widget_class_set_css_name(widgetClass, "findbar");
    gtk_widget_class_set_accessible_role(widgetClass, GTK_ACCESSIBLE_ROLE_SEARCH);
}

static void velder_find_bar_init(VelderFindBar*)
{
}

namespace velder {

FindBar::FindBar()
    : m_widget(GObjectPtr<GtkWidget>::adopt(GTK_WIDGET(g_object_new(velder_find_bar_get_type(), nullptr))))
    , m_previousButton(ChromeButton::Content::symbol("go-up-symbolic"), "Previous Match")
    , m_nextButton(ChromeButton::Content::symbol("go-down-symbolic"), "Next Match")
    , m_closeButton(ChromeButton::Content::symbol("window-close-symbolic"), "Close Find Bar")
{
    GtkWidget* widget = m_widget.get();
    setOwner(widget, this);
    gtk_widget_set_visible(widget, FALSE);

    m_field = gtk_text_new();
    gtk_text_set_placeholder_text(GTK_TEXT(m_field), "Find");
    gtk_accessible_update_property(GTK_ACCESSIBLE(m_field), GTK_ACCESSIBLE_PROPERTY_LABEL, "Find on page", -1);
    gtk_editable_set_width_chars(GTK_EDITABLE(m_field), 1);
    FieldStyle::attach(m_field, FieldStyle::Kind::find);
    gtk_widget_set_parent(m_field, widget);

    m_countLabel = gtk_label_new("");
    gtk_label_set_xalign(GTK_LABEL(m_countLabel), 1);
    gtk_label_set_single_line_mode(GTK_LABEL(m_countLabel), TRUE);
    FieldStyle::attach(m_countLabel, FieldStyle::Kind::count);
    gtk_widget_set_parent(m_countLabel, widget);

    auto ink = [] { return Theme::readable(Palette::passiveColor(), Palette::fieldColor()); };
    for (ChromeButton* button : { &m_previousButton, &m_nextButton, &m_closeButton }) {
        button->ink = ink;
        gtk_widget_set_parent(button->widget(), widget);
    }
    m_previousButton.setSymbolPointSize(10);
    m_nextButton.setSymbolPointSize(10);
    m_closeButton.setSymbolPointSize(11);
    m_closeButton.hoverInk = [] { return Theme::destructive; };
    // Nothing to step through until the first result comes.
    m_previousButton.setEnabled(false);
    m_nextButton.setEnabled(false);
    m_previousButton.onClick = [this] {
        if (auto previous = onPrev) {
            previous();
        }
    };
    m_nextButton.onClick = [this] {
        if (auto next = onNext) {
            next();
        }
    };
    m_closeButton.onClick = [this] {
        if (auto close = onClose) {
            close();
        }
    };

    listenToField<FindBar>(m_field, widget);

    m_themeToken = Themed::subscribeToTheme(widget, [this] { applyTheme(); });
}

FindBar::~FindBar()
{
    setOwner<FindBar>(m_widget.get(), nullptr);
}

std::string FindBar::text() const
{
    return gtk_editable_get_text(GTK_EDITABLE(m_field));
}

std::string FindBar::countText() const
{
    return gtk_label_get_text(GTK_LABEL(m_countLabel));
}

void FindBar::reportTextChange()
{
    if (auto changed = onQueryChanged) {
        changed(text());
    }
}

void FindBar::open()
{
    gtk_widget_set_visible(m_widget.get(), TRUE);
    gtk_widget_grab_focus(m_field);
    gtk_editable_select_region(GTK_EDITABLE(m_field), 0, -1);
    m_replaceOnType = true;
    std::string query = text();
    if (!query.empty()) {
        if (auto changed = onQueryChanged) {
            changed(query);
        }
    }
}

void FindBar::hide()
{
    gtk_widget_set_visible(m_widget.get(), FALSE);
    gtk_label_set_text(GTK_LABEL(m_countLabel), "");
}

void FindBar::setResult(int matchCount, int activeMatch)
{
    if (m_replaceOnType && gtk_widget_has_focus(m_field)) {
        gtk_editable_select_region(GTK_EDITABLE(m_field), 0, -1); // and shows it selected again
    }
    std::string count;
    if (!text().empty()) {
        count = matchCount == 0 ? "0" : std::to_string(activeMatch) + "/" + std::to_string(matchCount);
    }
    gtk_label_set_text(GTK_LABEL(m_countLabel), count.c_str());
    m_previousButton.setEnabled(matchCount > 0);
    m_nextButton.setEnabled(matchCount > 0);
}

bool FindBar::handleKey(guint keyval, GdkModifierType modifiers)
{
    if (std::exchange(m_replaceOnType, false) && !isCaretKey(keyval)) {
        // The page's own selection of a match takes the selection away from the field on X11; what is typed
        // first after opening still replaces the old search.
        gtk_editable_select_region(GTK_EDITABLE(m_field), 0, -1);
    }
    switch (keyval) {
    case GDK_KEY_Return:
    case GDK_KEY_KP_Enter:
    case GDK_KEY_ISO_Enter: {
        auto step = (modifiers & GDK_SHIFT_MASK) ? onPrev : onNext;
        if (step) {
            step();
        }
        return true;
    }
    case GDK_KEY_Escape:
        if (auto close = onClose) {
            close();
        }
        return true;
    default:
        return false;
    }
}

void FindBar::applyTheme()
{
    FieldStyle::refresh();
}

void FindBar::allocate(int width, int height)
{
    // From the right: close, next, previous, each 24 apart; the count 50 left of previous; the field
    // from 12 to 16 short of the count.
    constexpr double button = 22;
    double buttonY = (height - button) / 2;
    double closeX = width - 7 - button;
    double nextX = closeX - 24;
    double previousX = nextX - 24;
    double countX = previousX - 50;
    placeChild(m_closeButton.widget(), closeX, buttonY, button, button);
    placeChild(m_nextButton.widget(), nextX, buttonY, button, button);
    placeChild(m_previousButton.widget(), previousX, buttonY, button, button);
    placeChild(m_countLabel, countX, (height - 15) / 2.0, 46, 15);
    int fieldMinimum = 0, fieldHeight = 0;
    gtk_widget_measure(m_field, GTK_ORIENTATION_VERTICAL, -1, &fieldMinimum, &fieldHeight, nullptr, nullptr);
    placeChild(m_field, 12, (height - fieldHeight) / 2.0, countX - 16, fieldHeight);
}

void FindBar::snapshot(GtkSnapshot* snapshot)
{
    GtkWidget* widget = m_widget.get();
    graphene_rect_t bounds = Drawing::bounds(widget);
    Color field = Palette::fieldColor();
    graphene_rect_t body = Drawing::inset(bounds, 0.5, 0.5);

    GskRoundedRect clip;
    gsk_rounded_rect_init_from_rect(&clip, &bounds, 8);
    gtk_snapshot_push_rounded_clip(snapshot, &clip);
    Drawing::fillRounded(snapshot, field, body, 8);
    for (GtkWidget* child = gtk_widget_get_first_child(widget); child; child = gtk_widget_get_next_sibling(child)) {
        gtk_widget_snapshot_child(widget, child, snapshot);
    }
    gtk_snapshot_pop(snapshot);
    Drawing::strokeRounded(snapshot, Theme::readable(Palette::passiveColor(), field).withAlpha(0.45), body, 8, 1);
}

} // namespace velder
