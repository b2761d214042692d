#pragma once

#include "core/Timers.h"
#include "core/UpdateChannelAbsence.h"
#include "core/UpdateChoice.h"
#include "core/UpdateState.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace velder {

class UpdateAlerts;
class UpdateUserDriver;
class Updater;

// Decides when Velder looks for a new version, whether it may look at all, what the user is told, and
// whether an update that was applied really took. The updater backend does the fetching, checking and
// unpacking; this object holds what surrounds it: the reasons a build can't update, the periodic check,
// the state the title bars show, the staged update that waits for a click, and the record that keeps a
// broken update from being offered twice. Main thread only; it lives as long as the process.
class UpdateController {
public:
    static constexpr const char* stateDidChangeNotification = "Velder.updateStateDidChange";
    static constexpr std::chrono::seconds checkInterval { 21600 };
    using MakeUpdater = std::function<std::unique_ptr<Updater>(UpdateController&, UpdateUserDriver&)>;

    static UpdateController& shared();
    // Puts another controller in place of the shared one (tests).
    static void setShared(std::shared_ptr<UpdateController> controller);

    explicit UpdateController(Timers& timers = Timers::mainLoop());
    ~UpdateController();
    UpdateController(const UpdateController&) = delete;
    UpdateController& operator=(const UpdateController&) = delete;

    // The wiring, before start(): how to make the backend (a build without one can't update), and where
    // the alerts appear (without, they are only logged).
    void setBackend(MakeUpdater make) { m_makeUpdater = std::move(make); }
    void setAlerts(std::shared_ptr<UpdateAlerts> alerts) { m_alerts = std::move(alerts); }

    // Once, at launch, before the first windows: judges the last self-update, then checks now and every
    // six hours if this build can update.
    void start();
    // The menu command: a check the user asked for.
    void checkForUpdates() { beginCheck(true); }
    // A downloaded update is ready; `apply` waits until the user clicks the badge.
    void stage(const std::string& version, UpdateReply apply);
    // Installs the staged update, once its attempt is on disk.
    void applyStagedUpdate();

    // The update menu item's title, and whether it can be chosen.
    std::string menuLabel() const;
    bool menuItemEnabled() const { return !m_absence && m_state.value == UpdateState::Case::idle; }

    const std::optional<UpdateChannelAbsence>& absence() const { return m_absence; }
    const UpdateState& state() const { return m_state; }
    bool currentCheckIsManual() const { return m_currentCheckIsManual; }
    bool lastCheckWasClean() const { return m_lastCheckWasClean; }

    // The backend's reports.
    void updaterDidFinishUpdateCycle(const std::optional<std::string>& error);
    void updaterDidDownloadUpdate();
    void updaterDidAbort(const std::string& description);

    // An alert with one button, "OK".
    void report(const std::string& title, const std::string& text);

private:
    void beginCheck(bool manual);
    void finishCheck(bool clean);
    void evaluatePreviousApplyAttempt();
    std::optional<UpdateChannelAbsence> detectAbsence() const;
    void reportRefusal(const std::string& version);
    void setState(UpdateState state);

    Timers& m_timers;
    MakeUpdater m_makeUpdater;
    std::shared_ptr<UpdateAlerts> m_alerts;
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true); // held weakly by posted work

    UpdateState m_state;
    std::optional<UpdateChannelAbsence> m_absence;
    std::unique_ptr<UpdateUserDriver> m_driver; // before the updater, which holds it
    std::unique_ptr<Updater> m_updater;
    std::optional<Timers::Id> m_timer;
    UpdateReply m_applyStaged;
    std::optional<std::string> m_stagedVersion;
    bool m_lastCheckWasClean = false;
    std::optional<std::string> m_refusedVersion;
    bool m_checkInFlight = false;
    bool m_currentCheckIsManual = false;
};

} // namespace velder
