#include "core/UpdateController.h"

#include "core/AppInfo.h"
#include "core/BuildInfo.h"
#include "core/InstallSwap.h"
#include "core/Log.h"
#include "core/NotificationCenter.h"
#include "core/UpdateAlerts.h"
#include "core/UpdateUserDriver.h"
#include "core/Updater.h"
#include "core/Vault.h"
#include "core/VersionArchive.h"

#include <filesystem>
#include <mutex>

namespace velder {

namespace {

std::mutex sharedMutex;
std::shared_ptr<UpdateController> sharedController; // guarded by sharedMutex

} // namespace

UpdateController& UpdateController::shared()
{
    std::lock_guard lock(sharedMutex);
    if (!sharedController) {
        sharedController = std::make_shared<UpdateController>();
    }
    return *sharedController;
}

void UpdateController::setShared(std::shared_ptr<UpdateController> controller)
{
    std::lock_guard lock(sharedMutex);
    sharedController = std::move(controller);
}

UpdateController::UpdateController(Timers& timers)
    : m_timers(timers)
{
}

UpdateController::~UpdateController()
{
    if (m_timer) {
        m_timers.cancel(*m_timer);
    }
    m_updater.reset();
}

void UpdateController::start()
{
    evaluatePreviousApplyAttempt();
    m_absence = detectAbsence();
    if (m_absence) {
        log("Velder: no update channel \xe2\x80\x94 " + std::string(absenceText(*m_absence)));
        return;
    }
    m_driver = std::make_unique<UpdateUserDriver>(*this);
    auto updater = m_makeUpdater(*this, *m_driver);
    if (auto error = updater->start()) {
        // The words of the framework whose feed format the backend speaks.
        log("Velder: Sparkle refused to start \xe2\x80\x94 " + *error);
        return;
    }
    m_updater = std::move(updater);
    beginCheck(false);
    std::weak_ptr<bool> alive = m_alive;
    m_timer = m_timers.schedule(checkInterval, true, [this, alive] {
        if (alive.lock()) {
            beginCheck(false);
        }
    });
}

std::optional<UpdateChannelAbsence> UpdateController::detectAbsence() const
{
    return velder::detectAbsence(static_cast<bool>(m_makeUpdater), BuildInfo::installed(), AppInfo::executablePath());
}

void UpdateController::beginCheck(bool manual)
{
    if (m_absence) {
        if (manual) {
            report("No updates", std::string(absenceText(*m_absence)));
        }
        return;
    }
    if (!m_updater) {
        return;
    }
    if (m_checkInFlight) {
        if (manual) {
            report("Checking for updates", "A check is already running.");
        }
        return;
    }
    if (manual && m_state.value == UpdateState::Case::staged) {
        report("Update ready",
            "Velder " + m_state.version + " is downloaded. Click the update badge in the title bar to install it.");
        return;
    }
    m_checkInFlight = true;
    m_currentCheckIsManual = manual;
    m_lastCheckWasClean = false;
    m_refusedVersion.reset();
    setState(UpdateState::checking());
    Vault::shared().update([](VaultData& data) { data.lastUpdateCheckUtc = now(); });
    if (manual) {
        m_updater->checkForUpdates();
    } else {
        m_updater->checkForUpdatesInBackground();
    }
}

void UpdateController::finishCheck(bool clean)
{
    m_checkInFlight = false;
    m_lastCheckWasClean = clean && !m_refusedVersion;
    setState(m_stagedVersion ? UpdateState::staged(*m_stagedVersion) : UpdateState::idle());
    std::optional<std::string> toReport;
    if (m_currentCheckIsManual) {
        toReport = m_refusedVersion;
    }
    m_refusedVersion.reset();
    m_currentCheckIsManual = false;
    if (toReport) {
        std::weak_ptr<bool> alive = m_alive;
        m_timers.schedule(Timers::Duration(0), false, [this, alive, version = *toReport] {
            if (alive.lock()) {
                reportRefusal(version);
            }
        });
    }
}

void UpdateController::stage(const std::string& version, UpdateReply apply)
{
    if (auto older = std::exchange(m_applyStaged, nullptr)) {
        older(UpdateChoice::dismiss);
    }
    if (Vault::shared().snapshot()->updateApplyFailed == version) {
        log("Velder: " + version + " was applied before and did not install; not offering it again");
        m_refusedVersion = version;
        apply(UpdateChoice::dismiss);
        return;
    }
    m_applyStaged = std::move(apply);
    m_stagedVersion = version;
    m_checkInFlight = false;
    setState(UpdateState::staged(version));
}

void UpdateController::applyStagedUpdate()
{
    if (!m_applyStaged || !m_stagedVersion) {
        return;
    }
    std::string version = *m_stagedVersion;
    Vault::shared().update([&](VaultData& data) { data.updateApplyAttempted = version; });
    // On disk before anything is replaced: a crash during the install still leaves the attempt on record.
    Vault::shared().flushNow();
    auto apply = std::exchange(m_applyStaged, nullptr);
    apply(UpdateChoice::install);
}

void UpdateController::evaluatePreviousApplyAttempt()
{
    auto attempted = Vault::shared().snapshot()->updateApplyAttempted;
    if (!attempted) {
        return;
    }
    Vault::shared().update([](VaultData& data) { data.updateApplyAttempted.reset(); });
    std::string current = AppInfo::version();
    if (*attempted != current) {
        Vault::shared().update([&](VaultData& data) { data.updateApplyFailed = *attempted; });
        report("Update did not install",
            "Velder " + *attempted + " was downloaded and applied, but this is still version " + current + ". "
                + "That version will not be offered again. The next release will be.");
        return;
    }
    Vault::shared().update([&](VaultData& data) {
        if (data.updateApplyFailed == current) {
            data.updateApplyFailed.reset();
        }
    });
    // The new version has started: the tree it replaced, and the download and unpacked tree it came from, are
    // no longer needed.
    InstallSwap::removePrevious(AppInfo::installRoot());
    std::error_code ignored;
    std::filesystem::remove_all(AppInfo::updaterCacheDirectory(), ignored);
}

void UpdateController::reportRefusal(const std::string& version)
{
    std::string title = "Velder " + version + " was not installed";
    std::string text = "Version " + version + " is available, but the last attempt to install it did not complete. "
        + "You are running " + AppInfo::version() + ". It will not be offered automatically; the next release will be.";
    if (!m_alerts) {
        log("Velder: " + title);
        return;
    }
    std::weak_ptr<bool> alive = m_alive;
    m_alerts->ask(title, text, "Try Again", "Not Now", [this, alive](bool tryAgain) {
        if (!tryAgain || !alive.lock()) {
            return;
        }
        Vault::shared().update([](VaultData& data) { data.updateApplyFailed.reset(); });
        beginCheck(true);
    });
}

void UpdateController::report(const std::string& title, const std::string& text)
{
    if (m_alerts) {
        m_alerts->report(title, text);
    } else {
        log("Velder: " + title + " \xe2\x80\x94 " + text);
    }
}

std::string UpdateController::menuLabel() const
{
    if (m_absence) {
        return std::string(absenceText(*m_absence));
    }
    switch (m_state.value) {
    case UpdateState::Case::idle:
        return "Check for Updates\xe2\x80\xa6";
    case UpdateState::Case::checking:
        return "Checking for updates\xe2\x80\xa6";
    case UpdateState::Case::staged:
        return "Update ready \xe2\x80\x94 v" + m_state.version;
    }
    return {};
}

void UpdateController::setState(UpdateState state)
{
    if (state == m_state) {
        return;
    }
    m_state = std::move(state);
    NotificationCenter::defaultCenter().post(
        Notification { stateDidChangeNotification, this, { { "clean", m_lastCheckWasClean } } });
}

void UpdateController::updaterDidFinishUpdateCycle(const std::optional<std::string>& error)
{
    finishCheck(!error);
}

void UpdateController::updaterDidDownloadUpdate()
{
    VersionArchive::capture();
}

void UpdateController::updaterDidAbort(const std::string& description)
{
    if (m_currentCheckIsManual) {
        report("Could not check for updates", description);
    }
    finishCheck(false);
}

} // namespace velder
