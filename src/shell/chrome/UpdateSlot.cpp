#include "shell/chrome/UpdateSlot.h"

#include "core/Palette.h"
#include "core/Theme.h"
#include "core/UpdateController.h"
#include "shell/chrome/Drawing.h"
#include "shell/chrome/OwnedWidget.h"
#include "shell/chrome/PressGesture.h"

#include <cmath>
#include <utility>

using VelderUpdateSlot = velder::OwnedWidget<velder::UpdateSlot>;
using VelderUpdateSlotClass = GtkWidgetClass;
G_DEFINE_TYPE(VelderUpdateSlot, velder_update_slot, GTK_TYPE_WIDGET)

namespace {

using velder::UpdateSlot;

void slotMeasure(GtkWidget*, GtkOrientation, int, int* minimum, int* natural, int*, int*)
{
    *minimum = *natural = UpdateSlot::side;
}

} // namespace

static void velder_update_slot_class_init(VelderUpdateSlotClass* widgetClass)
{
    widgetClass->snapshot = velder::snapshotByOwner<UpdateSlot>;
    widgetClass->measure = slotMeasure;
    gtk_widget_class_set_css_name(widgetClass, "updateslot");
    gtk_widget_class_set_accessible_role(widgetClass, GTK_ACCESSIBLE_ROLE_BUTTON);
}

static void velder_update_slot_init(VelderUpdateSlot* self)
{
    GtkWidget* widget = GTK_WIDGET(self);
    gtk_widget_set_focusable(widget, FALSE);
    // The slot is a button: a press on it must not drag the window.
    velder::addPressGesture<UpdateSlot>(widget);
}

namespace velder {

UpdateSlot::UpdateSlot(UpdateState initial, Timers& timers)
    : m_widget(GObjectPtr<GtkWidget>::adopt(GTK_WIDGET(g_object_new(velder_update_slot_get_type(), nullptr))))
    , m_state(std::move(initial))
    , m_timers(timers)
{
    setOwner(m_widget.get(), this);
    if (m_state.value == UpdateState::Case::checking) {
        startSpinning();
    }
    refreshTooltip();
    m_themeToken = Themed::subscribeToTheme(m_widget.get(), nullptr);
}

std::unique_ptr<UpdateSlot> UpdateSlot::following(UpdateController& controller)
{
    auto slot = std::make_unique<UpdateSlot>(controller.state());
    UpdateSlot* self = slot.get();
    slot->m_stateToken = NotificationCenter::defaultCenter().addObserver(
        UpdateController::stateDidChangeNotification, [self, &controller](const Notification& note) {
            if (note.object == &controller) {
                auto clean = note.userInfo.find("clean");
                self->apply(controller.state(), clean != note.userInfo.end() && clean->second);
            }
        });
    slot->onApplyStaged = [&controller] { controller.applyStagedUpdate(); };
    return slot;
}

UpdateSlot::~UpdateSlot()
{
    m_stateToken.remove();
    setOwner<UpdateSlot>(m_widget.get(), nullptr);
    stopSpinning();
    if (m_tickTimer) {
        m_timers.cancel(*m_tickTimer);
    }
}

void UpdateSlot::apply(const UpdateState& state, bool clean)
{
    UpdateState::Case old = m_state.value;
    m_state = state;
    switch (state.value) {
    case UpdateState::Case::checking:
        m_watchedCheckStart = true;
        cancelTick();
        startSpinning();
        break;
    case UpdateState::Case::staged:
        stopSpinning();
        cancelTick();
        break;
    case UpdateState::Case::idle:
        stopSpinning();
        if (old == UpdateState::Case::checking && m_watchedCheckStart && clean) {
            showTick();
        }
        m_watchedCheckStart = false;
        break;
    }
    refreshTooltip();
    redraw();
}

bool UpdateSlot::isTickShowing() const
{
    return m_tickTimer.has_value();
}

void UpdateSlot::startSpinning()
{
    if (m_spinTimer) {
        return;
    }
    m_spinTimer = m_timers.schedule(spinInterval, true, [this] {
        m_spinAngle += spinStep;
        redraw();
    });
}

void UpdateSlot::stopSpinning()
{
    if (m_spinTimer) {
        m_timers.cancel(*std::exchange(m_spinTimer, std::nullopt));
    }
}

void UpdateSlot::showTick()
{
    if (m_tickTimer) {
        m_timers.cancel(*m_tickTimer);
    }
    m_tickTimer = m_timers.schedule(tickDuration, false, [this] {
        m_tickTimer.reset();
        cancelTick();
    });
    refreshTooltip();
    redraw();
}

void UpdateSlot::cancelTick()
{
    if (m_tickTimer) {
        m_timers.cancel(*std::exchange(m_tickTimer, std::nullopt));
    }
    refreshTooltip();
    redraw();
}

void UpdateSlot::refreshTooltip()
{
    std::string tip;
    switch (m_state.value) {
    case UpdateState::Case::idle:
        if (isTickShowing()) {
            tip = "Velder is up to date";
        }
        break;
    case UpdateState::Case::checking:
        tip = "Checking for updates…";
        break;
    case UpdateState::Case::staged:
        tip = "Update to v" + m_state.version;
        break;
    }
    GtkWidget* widget = m_widget.get();
    gtk_widget_set_tooltip_text(widget, tip.empty() ? nullptr : tip.c_str());
    gtk_accessible_update_property(
        GTK_ACCESSIBLE(widget), GTK_ACCESSIBLE_PROPERTY_LABEL, tip.empty() ? "Updates" : tip.c_str(), -1);
}

void UpdateSlot::redraw()
{
    gtk_widget_queue_draw(m_widget.get());
}

void UpdateSlot::press()
{
    m_isTracking = true;
}

void UpdateSlot::pointerMoved(double, double)
{
    // Only where the press ends counts.
}

void UpdateSlot::cancelPress()
{
    m_isTracking = false;
}

void UpdateSlot::release(double x, double y)
{
    if (!std::exchange(m_isTracking, false) || !Drawing::contains(m_widget.get(), x, y)) {
        return;
    }
    if (m_state.value == UpdateState::Case::staged) {
        if (auto apply = onApplyStaged) {
            apply();
        }
    }
}

void UpdateSlot::snapshot(GtkSnapshot* snapshot)
{
    GtkWidget* widget = m_widget.get();
    graphene_rect_t bounds = Drawing::bounds(widget);
    Color border = Palette::borderColor();
    Drawing::fill(snapshot, border, bounds);

    graphene_rect_t area = Drawing::inset(bounds, 4, 4);
    double left = area.origin.x, top = area.origin.y;
    double right = left + area.size.width, bottom = top + area.size.height;
    double centerX = left + area.size.width / 2, centerY = top + area.size.height / 2;
    bool ticking = m_state.value == UpdateState::Case::idle && isTickShowing();
    if (m_state.value == UpdateState::Case::idle && !ticking) {
        return;
    }

    cairo_t* cairo = gtk_snapshot_append_cairo(snapshot, &bounds);
    cairo_set_line_cap(cairo, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_join(cairo, CAIRO_LINE_JOIN_ROUND);
    switch (m_state.value) {
    case UpdateState::Case::checking: {
        // 280 degrees from the spin angle, counter-clockwise on screen: y grows downwards here, so the
        // angles are negated.
        double radius = area.size.width / 2 - 1;
        cairo_arc_negative(cairo, centerX, centerY, radius, -m_spinAngle, -(m_spinAngle + 280 * M_PI / 180));
        Drawing::setSource(cairo, Theme::readable(Palette::passiveColor(), border));
        cairo_set_line_width(cairo, 1.8);
        cairo_stroke(cairo);
        break;
    }
    case UpdateState::Case::staged: {
        Color highlight = Palette::highlightColor();
        cairo_arc(cairo, centerX, centerY, area.size.width / 2, 0, 2 * M_PI);
        Drawing::setSource(cairo, highlight);
        cairo_fill(cairo);
        // A down arrow: a line down the middle, and two strokes back from its tip.
        double tip = bottom - 3.5;
        cairo_move_to(cairo, centerX, top + 3.5);
        cairo_line_to(cairo, centerX, tip);
        cairo_move_to(cairo, centerX - 3.5, tip - 3.5);
        cairo_line_to(cairo, centerX, tip);
        cairo_line_to(cairo, centerX + 3.5, tip - 3.5);
        Drawing::setSource(cairo, Theme::blackOrWhiteOn(highlight));
        cairo_set_line_width(cairo, 1.6);
        cairo_stroke(cairo);
        break;
    }
    case UpdateState::Case::idle:
        cairo_move_to(cairo, left + 1, centerY);
        cairo_line_to(cairo, centerX - 1, centerY + 2);
        cairo_line_to(cairo, right - 1, centerY - 2);
        Drawing::setSource(cairo, Theme::pinLit);
        cairo_set_line_width(cairo, 1.8);
        cairo_stroke(cairo);
        break;
    }
    cairo_destroy(cairo);
}

} // namespace velder
