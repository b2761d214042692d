#pragma once

#include "core/AppcastItem.h"
#include "core/BuildInfo.h"
#include "core/Updater.h"
#include "update/UpdateSession.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace velder {

class UpdateController;
class UpdateUserDriver;

// Velder's updater backend. One check is one cycle: fetch the appcast over HTTPS, take the newest item above
// the running version, ask the driver, download the archive into the updater's cache, check its length and
// Ed25519 signature before anything else reads it, unpack it, and hand it to the driver as ready. The
// cycle's end goes to the controller. When the staged update is to be installed, the unpacked tree takes
// the installation's place and `relaunch` is given the new program to start in place of this one.
//
// The cache: $XDG_CACHE_HOME/Velder/updater/PersistentDownloads/ for the archive,
// .../updater/Installation/<version>/ for the unpacked tree. Main thread only; the reading, checking and
// unpacking of a download run on a thread of their own, and report back on the main loop.
class VelderUpdater final : public Updater {
public:
    using Relaunch = std::function<void(const std::string& program)>;

    VelderUpdater(UpdateController& controller, UpdateUserDriver& driver, BuildInfo info, Relaunch relaunch);

    std::optional<std::string> start() override;
    void checkForUpdates() override { beginCycle(); }
    void checkForUpdatesInBackground() override { beginCycle(); }

    static std::string downloadsDirectory();
    static std::string installationDirectory();

private:
    void beginCycle();
    void feedArrived(const std::string& body);
    void download(const AppcastItem& item);
    void downloaded(const AppcastItem& item, const std::string& path);
    void unpack(const std::string& version, const std::string& path);
    // Runs `work` on a thread of its own and hands its answer to `done` on the main loop, unless this
    // updater has gone by then.
    void aside(
        std::function<std::optional<std::string>()> work, std::function<void(const std::optional<std::string>&)> done);
    void install(const std::string& version, const std::string& tree);
    // A refusal: logged, what was downloaded or unpacked deleted, and the cycle ends with the reason.
    void refuse(const std::string& version, const std::string& why, const std::string& path);
    void fail(const std::string& why);
    void endCycle(const std::optional<std::string>& error);

    UpdateController& m_controller;
    UpdateUserDriver& m_driver;
    BuildInfo m_info;
    Relaunch m_relaunch;
    std::unique_ptr<UpdateSession> m_session;
    bool m_inCycle = false;
    std::optional<std::string> m_readyVersion; // unpacked and handed to the driver
    std::shared_ptr<bool> m_alive = std::make_shared<bool>(true);
};

} // namespace velder
