#pragma once

#include "core/NotificationCenter.h"
#include "core/Timers.h"
#include "core/UpdateState.h"
#include "glib/GObjectPtr.h"
#include "shell/chrome/Themed.h"

#include <chrono>
#include <functional>
#include <gtk/gtk.h>
#include <memory>
#include <optional>
#include <string>

namespace velder {

class UpdateController;

// The small control at the end of the title bar that shows what the updater does: a spinner while a
// check runs, a badge while an update waits (a click installs it), and a tick for 3 seconds after a
// clean check that this slot saw begin.
class UpdateSlot {
public:
    static constexpr int side = 22;
    // How long the tick shows.
    static constexpr std::chrono::milliseconds tickDuration { 3000 };
    // The spinner turns 12 degrees every 1/30 of a second: once a second.
    static constexpr std::chrono::milliseconds spinInterval { 33 };
    static constexpr double spinStep = 0.20943951023931953;

    // A slot made during a check spins, but never shows that check's tick. The spinner and the tick run on
    // `timers`, which tests own.
    explicit UpdateSlot(UpdateState initial = UpdateState::idle(), Timers& timers = Timers::mainLoop());
    // A slot that shows the controller's state from now on, and installs its staged update at a click.
    static std::unique_ptr<UpdateSlot> following(UpdateController& controller);
    ~UpdateSlot();
    UpdateSlot(const UpdateSlot&) = delete;
    UpdateSlot& operator=(const UpdateSlot&) = delete;

    GtkWidget* widget() const { return m_widget.get(); }

    // A click on the badge: the staged update is to be installed.
    std::function<void()> onApplyStaged;

    // A new state from the updater; `clean` tells whether a check that ended did so without an error.
    void apply(const UpdateState& state, bool clean = false);

    const UpdateState& state() const { return m_state; }
    bool isSpinning() const { return m_spinTimer.has_value(); }
    bool isTickShowing() const;
    double spinAngle() const { return m_spinAngle; }

    // What the press gesture calls, in the slot's coordinates; tests drive them directly.
    void press();
    void pointerMoved(double x, double y);
    void release(double x, double y);
    void cancelPress();

    // Internal: the widget's snapshot.
    void snapshot(GtkSnapshot* snapshot);

private:
    void startSpinning();
    void stopSpinning();
    void showTick();
    void cancelTick();
    void refreshTooltip();
    void redraw();

    GObjectPtr<GtkWidget> m_widget;
    UpdateState m_state;
    Timers& m_timers;
    std::optional<Timers::Id> m_tickTimer;
    bool m_watchedCheckStart = false;
    double m_spinAngle = 0;
    std::optional<Timers::Id> m_spinTimer;
    bool m_isTracking = false;
    Themed::Token m_themeToken;
    NotificationCenter::Token m_stateToken;
};

} // namespace velder
