#include "update/VelderUpdater.h"

#include "core/AppInfo.h"
#include "core/Appcast.h"
#include "core/FileIO.h"
#include "core/InstallSwap.h"
#include "core/Log.h"
#include "core/UpdateController.h"
#include "core/UpdateSignature.h"
#include "core/UpdateUserDriver.h"
#include "glib/MainLoop.h"
#include "update/ArchiveUnpacker.h"

#include <filesystem>
#include <thread>

namespace velder {

namespace fs = std::filesystem;

namespace {

// The archive's name in the cache: the last part of its address, or one made of the version.
std::string fileNameFor(const AppcastItem& item)
{
    std::string path = item.url.substr(0, item.url.find_first_of("?#"));
    std::string name = path.substr(path.find_last_of('/') + 1);
    if (name.empty() || name == "." || name == "..") {
        return "velder-" + item.displayVersionString() + ".tar.xz";
    }
    return name;
}

// A version becomes a folder name: nothing that could leave the folder.
bool isSafeFolderName(const std::string& name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos;
}

} // namespace

VelderUpdater::VelderUpdater(UpdateController& controller, UpdateUserDriver& driver, BuildInfo info, Relaunch relaunch)
    : m_controller(controller)
    , m_driver(driver)
    , m_info(std::move(info))
    , m_relaunch(std::move(relaunch))
{
}

std::string VelderUpdater::downloadsDirectory()
{
    return AppInfo::updaterCacheDirectory() + "/PersistentDownloads";
}

std::string VelderUpdater::installationDirectory()
{
    return AppInfo::updaterCacheDirectory() + "/Installation";
}

std::optional<std::string> VelderUpdater::start()
{
    std::string error;
    m_session = UpdateSession::create(m_info.feedTrustAnchors, &error);
    if (!m_session) {
        return error;
    }
    return std::nullopt;
}

void VelderUpdater::beginCycle()
{
    if (m_inCycle || !m_session) {
        return;
    }
    m_inCycle = true;
    std::weak_ptr<bool> alive = m_alive;
    m_session->fetch(
        m_info.feedUrl.value_or(""), [this, alive](std::optional<std::string> body, const std::string& error) {
            if (!alive.lock()) {
                return;
            }
            if (!body) {
                fail("The update feed could not be read: " + error + ".");
                return;
            }
            feedArrived(*body);
        });
}

void VelderUpdater::feedArrived(const std::string& body)
{
    std::string error;
    auto items = Appcast::parse(body, &error);
    if (!items) {
        fail("The update feed is not a valid appcast: " + error + ".");
        return;
    }
    auto newest = Appcast::newestAbove(*items, AppInfo::version());
    if (!newest) {
        m_driver.showUpdateNotFound([this] { endCycle(std::nullopt); });
        return;
    }
    if (newest->displayVersionString() == m_readyVersion) {
        endCycle(std::nullopt); // already downloaded and waiting for the user
        return;
    }
    AppcastItem item = *newest;
    m_driver.showUpdateFound(item, [this, item](UpdateChoice choice) {
        if (choice == UpdateChoice::install) {
            download(item);
        } else {
            endCycle(std::nullopt);
        }
    });
}

void VelderUpdater::download(const AppcastItem& item)
{
    std::string version = item.displayVersionString();
    if (!isSafeFolderName(version)) {
        refuse(version, "its version is not a folder name", {});
        return;
    }
    if (!item.url.starts_with("https://")) {
        refuse(version, "its address is not https", {});
        return;
    }
    // What earlier cycles left behind goes: the cache holds one update at a time.
    std::error_code error;
    fs::remove_all(downloadsDirectory(), error);
    fs::remove_all(installationDirectory(), error);
    fs::create_directories(downloadsDirectory(), error);
    if (error) {
        fail("The update could not be saved: " + error.message() + ".");
        return;
    }
    std::string path = downloadsDirectory() + "/" + fileNameFor(item);
    std::weak_ptr<bool> alive = m_alive;
    m_session->download(item.url, path, [this, alive, item, path](const std::optional<std::string>& failure) {
        if (!alive.lock()) {
            return;
        }
        if (failure) {
            std::error_code ignored;
            fs::remove(path, ignored);
            fail("The update could not be downloaded: " + *failure + ".");
            return;
        }
        downloaded(item, path);
    });
}

void VelderUpdater::downloaded(const AppcastItem& item, const std::string& path)
{
    // Length and signature come first: nothing else reads bytes that aren't the publisher's. The reading and
    // the unpacking run beside the main loop, so that the windows and their spinners go on meanwhile.
    std::string key = m_info.publicEdKey.value_or("");
    aside(
        [item, path, key]() -> std::optional<std::string> {
            auto bytes = FileIO::readWhole(path);
            if (!bytes) {
                return "the download can't be read";
            }
            if (item.length && *item.length != static_cast<std::int64_t>(bytes->size())) {
                return "it is " + std::to_string(bytes->size()) + " bytes long, not " + std::to_string(*item.length);
            }
            return UpdateSignature::refusal(*bytes, item.edSignature, key);
        },
        [this, item, path](const std::optional<std::string>& refusal) {
            if (refusal) {
                refuse(item.displayVersionString(), *refusal, path);
                return;
            }
            m_controller.updaterDidDownloadUpdate();
            unpack(item.displayVersionString(), path);
        });
}

void VelderUpdater::unpack(const std::string& version, const std::string& path)
{
    std::string tree = installationDirectory() + "/" + version;
    aside(
        [path, tree]() -> std::optional<std::string> {
            if (auto refusal = ArchiveUnpacker::unpack(path, tree)) {
                return refusal;
            }
            std::error_code error;
            if (!fs::is_regular_file(tree + "/bin/velder", error)) {
                fs::remove_all(tree, error);
                return "the archive holds no bin/velder";
            }
            return std::nullopt;
        },
        [this, version, path, tree](const std::optional<std::string>& refusal) {
            if (refusal) {
                refuse(version, *refusal, path);
                return;
            }
            m_readyVersion = version;
            std::weak_ptr<bool> alive = m_alive;
            m_driver.showReady([this, alive, version, tree](UpdateChoice choice) {
                if (alive.lock() && choice == UpdateChoice::install) {
                    install(version, tree);
                }
            });
            endCycle(std::nullopt);
        });
}

void VelderUpdater::aside(
    std::function<std::optional<std::string>()> work, std::function<void(const std::optional<std::string>&)> done)
{
    std::weak_ptr<bool> alive = m_alive;
    std::thread([work = std::move(work), done = std::move(done), alive] {
        auto result = work();
        MainLoop::post([done, alive, result] {
            if (alive.lock()) {
                done(result);
            }
        });
    }).detach();
}

void VelderUpdater::install(const std::string& version, const std::string& tree)
{
    std::string root = AppInfo::installRoot();
    if (auto failure = InstallSwap::swap(root, tree)) {
        log("Velder: could not install " + version + " \xe2\x80\x94 " + *failure);
        m_controller.report("Could not install the update",
            "Velder " + version + " could not take the place of this version, which stays as it was: " + *failure
                + ".");
        return;
    }
    log("Velder: installed " + version + " in " + root + "; restarting");
    m_relaunch(root + "/bin/velder");
}

void VelderUpdater::refuse(const std::string& version, const std::string& why, const std::string& path)
{
    log("Velder: refused the update " + version + " \xe2\x80\x94 " + why);
    std::error_code ignored;
    if (!path.empty()) {
        fs::remove(path, ignored);
    }
    fail("Velder " + version + " was refused: " + why + ".");
}

void VelderUpdater::fail(const std::string& why)
{
    m_driver.showUpdaterError(why, [this, why] { endCycle(why); });
}

void VelderUpdater::endCycle(const std::optional<std::string>& error)
{
    m_inCycle = false;
    m_controller.updaterDidFinishUpdateCycle(error);
}

} // namespace velder
