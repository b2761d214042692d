#include "shell/overlays/UrlSuggestions.h"

#include "core/HistoryStore.h"
#include "core/Palette.h"
#include "core/Theme.h"
#include "core/UrlHelper.h"
#include "shell/chrome/Drawing.h"
#include "shell/chrome/OwnedWidget.h"

#include <cmath>

using VelderUrlSuggestions = velder::OwnedWidget<velder::UrlSuggestions>;
using VelderUrlSuggestionsClass = GtkWidgetClass;
G_DEFINE_TYPE(VelderUrlSuggestions, velder_url_suggestions, GTK_TYPE_WIDGET)

namespace {

void listMeasure(GtkWidget* widget, GtkOrientation orientation, int, int* minimum, int* natural, int*, int*)
{
    *minimum = *natural = 0;
    auto* list = velder::ownerOf<velder::UrlSuggestions>(widget);
    if (list && orientation == GTK_ORIENTATION_VERTICAL) {
        *minimum = *natural = static_cast<int>(velder::UrlSuggestions::height(list->entries().size()));
    }
}

void moved(GtkEventControllerMotion*, double x, double y, gpointer widget)
{
    if (auto* list = velder::ownerOf<velder::UrlSuggestions>(widget)) {
        list->pointerMoved(x, y);
    }
}

void left(GtkEventControllerMotion*, gpointer widget)
{
    if (auto* list = velder::ownerOf<velder::UrlSuggestions>(widget)) {
        list->pointerLeft();
    }
}

void pressed(GtkGestureClick* gesture, int, double, double, gpointer)
{
    gtk_gesture_set_state(GTK_GESTURE(gesture), GTK_EVENT_SEQUENCE_CLAIMED);
}

void released(GtkGestureClick*, int, double x, double y, gpointer widget)
{
    if (auto* list = velder::ownerOf<velder::UrlSuggestions>(widget)) {
        list->release(x, y);
    }
}

} // namespace

static void velder_url_suggestions_class_init(VelderUrlSuggestionsClass* widgetClass)
{
    widgetClass->snapshot = velder::snapshotByOwner<velder::UrlSuggestions>;
    widgetClass->measure = listMeasure;
    gtk_widget_class_set_css_name(widgetClass, "urlsuggestions");
    gtk_widget_class_set_accessible_role(widgetClass, GTK_ACCESSIBLE_ROLE_LIST);
}

static void velder_url_suggestions_init(VelderUrlSuggestions* self)
{
    GtkWidget* widget = GTK_WIDGET(self);
    // A click on a row must not take the keyboard from the address bar.
    gtk_widget_set_focusable(widget, FALSE);
    gtk_widget_set_focus_on_click(widget, FALSE);
    gtk_widget_set_overflow(widget, GTK_OVERFLOW_HIDDEN);

    GtkEventController* motion = gtk_event_controller_motion_new();
    g_signal_connect(motion, "enter", G_CALLBACK(moved), self);
    g_signal_connect(motion, "motion", G_CALLBACK(moved), self);
    g_signal_connect(motion, "leave", G_CALLBACK(left), self);
    gtk_widget_add_controller(widget, motion);

    GtkGesture* click = gtk_gesture_click_new();
    gtk_gesture_single_set_button(GTK_GESTURE_SINGLE(click), GDK_BUTTON_PRIMARY);
    g_signal_connect(click, "pressed", G_CALLBACK(pressed), self);
    g_signal_connect(click, "released", G_CALLBACK(released), self);
    gtk_widget_add_controller(widget, GTK_EVENT_CONTROLLER(click));
}

namespace velder {

namespace {

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t\n\r\v\f";
    std::size_t start = text.find_first_not_of(blanks);
    if (start == std::string_view::npos) {
        return {};
    }
    return text.substr(start, text.find_last_not_of(blanks) - start + 1);
}

} // namespace

UrlSuggestions::UrlSuggestions()
    : m_widget(GObjectPtr<GtkWidget>::adopt(GTK_WIDGET(g_object_new(velder_url_suggestions_get_type(), nullptr))))
{
    setOwner(m_widget.get(), this);
    gtk_widget_set_visible(m_widget.get(), FALSE);
    m_themeToken = Themed::subscribeToTheme(m_widget.get(), nullptr);
}

UrlSuggestions::~UrlSuggestions()
{
    setOwner<UrlSuggestions>(m_widget.get(), nullptr);
}

void UrlSuggestions::update(std::string_view query)
{
    std::string_view text = trimmed(query);
    if (text.empty()) {
        clear();
        return;
    }
    m_entries = HistoryStore::shared().suggestions(text, limit);
    m_selectedIndex.reset();
    m_hoverIndex.reset();
    if (m_entries.empty()) {
        clear();
        return;
    }
    gtk_widget_set_visible(m_widget.get(), TRUE);
    gtk_widget_queue_resize(m_widget.get());
    gtk_widget_queue_draw(m_widget.get());
}

void UrlSuggestions::moveSelection(int delta)
{
    int count = static_cast<int>(m_entries.size());
    if (!isShowing() || count == 0) {
        return;
    }
    if (!m_selectedIndex) {
        m_selectedIndex = delta > 0 ? 0 : count - 1;
    } else {
        int index = *m_selectedIndex + delta;
        m_selectedIndex = index >= 0 && index < count ? std::optional<int>(index) : std::nullopt;
    }
    gtk_widget_queue_draw(m_widget.get());
}

void UrlSuggestions::clear()
{
    m_entries.clear();
    m_selectedIndex.reset();
    m_hoverIndex.reset();
    gtk_widget_set_visible(m_widget.get(), FALSE);
    gtk_widget_queue_resize(m_widget.get());
    gtk_widget_queue_draw(m_widget.get());
}

double UrlSuggestions::height(std::size_t rows)
{
    return static_cast<double>(rows) * rowHeight + 2 * verticalInset;
}

std::optional<int> UrlSuggestions::rowAt(double y, double listHeight, std::size_t rows)
{
    if (y < 0 || y >= listHeight) {
        return std::nullopt;
    }
    // Truncated toward zero, so that the top inset joins the first row.
    auto row = static_cast<long>(std::trunc((y - verticalInset) / rowHeight));
    if (row < 0 || static_cast<std::size_t>(row) >= rows) {
        return std::nullopt;
    }
    return static_cast<int>(row);
}

void UrlSuggestions::setHover(std::optional<int> index)
{
    if (index != m_hoverIndex) {
        m_hoverIndex = index;
        gtk_widget_queue_draw(m_widget.get());
    }
}

void UrlSuggestions::pointerMoved(double x, double y)
{
    bool inside = x >= 0 && x < gtk_widget_get_width(m_widget.get());
    setHover(inside ? rowAt(y, gtk_widget_get_height(m_widget.get()), m_entries.size()) : std::nullopt);
}

void UrlSuggestions::pointerLeft()
{
    setHover(std::nullopt);
}

void UrlSuggestions::release(double x, double y)
{
    bool inside = x >= 0 && x < gtk_widget_get_width(m_widget.get());
    auto row = inside ? rowAt(y, gtk_widget_get_height(m_widget.get()), m_entries.size()) : std::nullopt;
    if (!row) {
        return;
    }
    // A copy: accepting clears the list.
    HistoryEntry entry = m_entries[*row];
    if (auto accept = onAccept) {
        accept(entry);
    }
}

void UrlSuggestions::snapshot(GtkSnapshot* snapshot)
{
    GtkWidget* widget = m_widget.get();
    double width = gtk_widget_get_width(widget);
    graphene_rect_t bounds = Drawing::bounds(widget);
    Color field = Palette::fieldColor();
    Color highlight = Palette::highlightColor();
    Color text = Theme::readable(Palette::textColor(), field);
    Color passive = Theme::readable(Palette::passiveColor(), field);
    Color onHighlight = Theme::blackOrWhiteOn(highlight);

    GskRoundedRect clip;
    gsk_rounded_rect_init_from_rect(&clip, &bounds, 6);
    gtk_snapshot_push_rounded_clip(snapshot, &clip);
    Drawing::fill(snapshot, field, bounds);
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        const HistoryEntry& entry = m_entries[i];
        bool selected = m_selectedIndex && static_cast<std::size_t>(*m_selectedIndex) == i;
        bool hovered = m_hoverIndex && static_cast<std::size_t>(*m_hoverIndex) == i;
        double top = verticalInset + rowHeight * static_cast<double>(i);
        if (selected) {
            Drawing::fill(snapshot, highlight, Drawing::rect(0, top, width, rowHeight));
        } else if (hovered) {
            Drawing::fill(snapshot, Theme::shade(field, 0.12), Drawing::rect(0, top, width, rowHeight));
        }
        // The title's 15-pixel box ends 1 below the row's middle, the address's 13-pixel box starts there.
        double middle = top + rowHeight / 2;
        std::string title = entry.title.empty() ? UrlHelper::host(entry.url) : entry.title;
        auto first = Drawing::textLayout(widget, title, 12, PANGO_WEIGHT_NORMAL, width - 20);
        auto second = Drawing::textLayout(widget, entry.url, 10, PANGO_WEIGHT_NORMAL, width - 20);
        Drawing::drawLayout(snapshot, first.get(), 10, middle + 1 - 15, selected ? onHighlight : text);
        Drawing::drawLayout(snapshot, second.get(), 10, middle + 1, selected ? onHighlight.withAlpha(0.75) : passive);
    }
    gtk_snapshot_pop(snapshot);
    Drawing::strokeRounded(snapshot, Palette::passiveColor().withAlpha(0.35), Drawing::inset(bounds, 0.5, 0.5), 6, 1);
}

} // namespace velder
