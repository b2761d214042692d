#include "core/UpdateController.h"
#include "core/AppInfo.h"
#include "core/InstallSwap.h"
#include "core/ManualTimers.h"
#include "core/NotificationCenter.h"
#include "core/UpdateAlerts.h"
#include "core/UpdateUserDriver.h"
#include "core/Updater.h"
#include "support/FakeUpdateAlerts.h"
#include "support/ScopedInstall.h"
#include "support/ScopedStores.h"

#include "CoreTestSupport.h"

#include <filesystem>

using namespace velder;
using namespace velder::test;
using namespace std::chrono_literals;

namespace {

struct FakeUpdater final : Updater {
    std::optional<std::string> startError;
    int manualChecks = 0;
    int backgroundChecks = 0;
    std::optional<std::string> start() override { return startError; }
    void checkForUpdates() override { ++manualChecks; }
    void checkForUpdatesInBackground() override { ++backgroundChecks; }
};

const std::map<std::string, std::string> channel { { "SUFeedURL", "https://127.0.0.1:1/appcast.xml" },
    { "SUPublicEDKey", "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA=" }, { "CFBundleShortVersionString", "0.1.0" } };

// A controller of an installed build with a fake backend, alerts and timers; its notifications are noted
// as "checking", "idle clean", "staged 0.2.0".
class UpdateControllerTest : public testing::Test {
protected:
    explicit UpdateControllerTest(std::map<std::string, std::string> info = channel)
        : install(info)
    {
        controller.setAlerts(alerts);
        controller.setBackend([this](UpdateController&, UpdateUserDriver& made) {
            driver = &made;
            auto fake = std::make_unique<FakeUpdater>();
            updater = fake.get();
            return fake;
        });
    }

    std::vector<std::string> notes;
    ScopedStores stores;
    ScopedInstall install;
    ManualTimers timers;
    UpdateController controller { timers };
    std::shared_ptr<FakeUpdateAlerts> alerts = std::make_shared<FakeUpdateAlerts>();
    FakeUpdater* updater = nullptr;
    UpdateUserDriver* driver = nullptr;
    NotificationCenter::Token token = NotificationCenter::defaultCenter().addObserver(
        UpdateController::stateDidChangeNotification, [this](const Notification& note) {
            const auto& state = controller.state();
            notes.push_back(state.value == UpdateState::Case::checking ? "checking"
                    : state.value == UpdateState::Case::staged         ? "staged " + state.version
                                                               : (note.userInfo.at("clean") ? "idle clean" : "idle"));
        });
};

void writeInfo(const std::string& root, const std::string& json)
{
    writeBytes(root + "/share/velder/velder-info.json", std::vector<std::uint8_t>(json.begin(), json.end()));
}

} // namespace

TEST_F(UpdateControllerTest, ABuildThatCannotUpdateSaysWhyAndNeverChecks)
{
    struct Row {
        const char* name;
        const char* info; // velder-info.json, or null for none
        bool backend;
        bool buildTree;
        const char* absence; // null: it can update
    };
    const Row rows[] = {
        { "no backend", R"({"SUFeedURL":"https://a/f","SUPublicEDKey":"k"})", false, false,
            "This build has no updater." },
        { "no info file", nullptr, true, false, "This build cannot verify updates." },
        { "a blank key", R"({"SUFeedURL":"https://a/f","SUPublicEDKey":" \t"})", true, false,
            "This build cannot verify updates." },
        { "an http feed", R"({"SUFeedURL":"http://a/f","SUPublicEDKey":"k"})", true, false,
            "This build has no update channel." },
        { "HTTPS is not https", R"({"SUFeedURL":"HTTPS://a/f","SUPublicEDKey":"k"})", true, false,
            "This build has no update channel." },
        { "not a URL", R"({"SUFeedURL":"https://[/f","SUPublicEDKey":"k"})", true, false,
            "This build has no update channel." },
        { "a build tree", R"({"SUFeedURL":"https://a/f","SUPublicEDKey":"k"})", true, true,
            "Running from a build directory." },
        { "an installed build", R"({"SUFeedURL":"https://a/f","SUPublicEDKey":"k"})", true, false, nullptr },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ScopedInstall build({}, "build/src");
        if (row.info) {
            writeInfo(build.root(), row.info);
        } else {
            std::filesystem::remove(build.root() + "/share/velder/velder-info.json");
        }
        if (row.buildTree) {
            writeBytes(build.root() + "/../CMakeCache.txt", {});
        }
        UpdateController tried(timers);
        tried.setAlerts(alerts);
        if (row.backend) {
            tried.setBackend([](UpdateController&, UpdateUserDriver&) { return std::make_unique<FakeUpdater>(); });
        }
        LogCapture log;
        tried.start();
        if (!row.absence) {
            EXPECT_TRUE(log.lines().empty());
            EXPECT_EQ(tried.menuLabel(), "Checking for updates…");
            continue;
        }
        expectOneLine(log, std::string("no update channel — ") + row.absence);
        EXPECT_EQ(tried.menuLabel(), row.absence);
        EXPECT_FALSE(tried.menuItemEnabled());
        EXPECT_EQ(timers.pending(), 0u) << "no periodic check";
        alerts->shown.clear();
        tried.checkForUpdates();
        EXPECT_EQ(alerts->shown, std::vector<std::string> { std::string("No updates: ") + row.absence });
    }
}

TEST_F(UpdateControllerTest, ChecksAtStartThenEverySixHoursAndReportsEachChange)
{
    controller.start();
    ASSERT_TRUE(updater);
    EXPECT_EQ(updater->backgroundChecks, 1);
    EXPECT_TRUE(stores.vault().snapshot()->lastUpdateCheckUtc.has_value());
    EXPECT_EQ(controller.menuLabel(), "Checking for updates…");
    EXPECT_FALSE(controller.menuItemEnabled());

    controller.checkForUpdates();
    EXPECT_EQ(alerts->shown.back(), "Checking for updates: A check is already running.");
    EXPECT_EQ(updater->manualChecks, 0) << "the running check goes on as it was";
    driver->showUpdateNotFound([&] { controller.updaterDidFinishUpdateCycle(std::nullopt); });
    EXPECT_EQ(alerts->shown.size(), 1u) << "a background check that found nothing says nothing";
    EXPECT_TRUE(controller.menuItemEnabled());

    timers.advance(UpdateController::checkInterval - 1ms);
    EXPECT_EQ(updater->backgroundChecks, 1);
    timers.advance(1ms);
    EXPECT_EQ(updater->backgroundChecks, 2);
    driver->showUpdaterError("offline", [&] { controller.updaterDidFinishUpdateCycle("offline"); });

    controller.checkForUpdates();
    EXPECT_EQ(updater->manualChecks, 1);
    driver->showUpdateNotFound([&] { controller.updaterDidFinishUpdateCycle(std::nullopt); });
    EXPECT_EQ(alerts->shown.back(), "No updates: Velder 0.1.0 is the latest version.");
    controller.checkForUpdates();
    controller.updaterDidAbort("the feed went away");
    EXPECT_EQ(alerts->shown.back(), "Could not check for updates: the feed went away");
    EXPECT_EQ(notes,
        (std::vector<std::string> {
            "checking", "idle clean", "checking", "idle", "checking", "idle clean", "checking", "idle" }));
}

TEST_F(UpdateControllerTest, AStagedUpdateWaitsForTheClickAndIsOnDiskBeforeItInstalls)
{
    controller.start();
    std::vector<UpdateChoice> replies;
    driver->showUpdateFound({ "20", "0.2.0", "https://x/v.tar.xz" }, [&](UpdateChoice c) { replies.push_back(c); });
    driver->showReady([&](UpdateChoice c) { replies.push_back(c); });
    controller.updaterDidFinishUpdateCycle(std::nullopt);
    EXPECT_EQ(controller.menuLabel(), "Update ready — v0.2.0");

    auto checkedAt = stores.vault().snapshot()->lastUpdateCheckUtc;
    controller.checkForUpdates();
    EXPECT_EQ(alerts->shown.back(),
        "Update ready: Velder 0.2.0 is downloaded. Click the update badge in the title bar to install it.");
    EXPECT_EQ(stores.vault().snapshot()->lastUpdateCheckUtc, checkedAt);
    timers.advance(UpdateController::checkInterval);
    controller.updaterDidFinishUpdateCycle(std::nullopt);
    EXPECT_EQ(notes, (std::vector<std::string> { "checking", "staged 0.2.0", "checking", "staged 0.2.0" }));

    controller.applyStagedUpdate();
    EXPECT_EQ(replies, (std::vector { UpdateChoice::install, UpdateChoice::install }));
    Vault reread(AppInfo::vaultFile(), testDataKey());
    EXPECT_EQ(reread.snapshot()->updateApplyAttempted, "0.2.0") << "flushed before the install";
    controller.applyStagedUpdate();
    EXPECT_EQ(replies.size(), 2u) << "one reply, answered once";
}

TEST_F(UpdateControllerTest, ARestartJudgesTheLastInstallOnce)
{
    struct Row {
        const char* name;
        const char* attempted;
        std::optional<std::string> failedBefore;
        std::optional<std::string> failedAfter;
        const char* alert; // null: none
    };
    const Row rows[] = {
        { "the update took", "0.1.0", "0.1.0", std::nullopt, nullptr },
        { "an older failure stays", "0.1.0", "0.0.9", "0.0.9", nullptr },
        { "still the old version", "0.2.0", std::nullopt, "0.2.0",
            "Update did not install: Velder 0.2.0 was downloaded and applied, but this is still version 0.1.0. That "
            "version will not be offered again. The next release will be." },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::filesystem::create_directories(InstallSwap::previousOf(install.root()));
        std::filesystem::create_directories(AppInfo::updaterCacheDirectory() + "/Installation/" + row.attempted);
        stores.vault().update([&](VaultData& data) {
            data.updateApplyAttempted = row.attempted;
            data.updateApplyFailed = row.failedBefore;
        });
        for (int start = 0; start < 2; ++start) {
            alerts->shown.clear();
            UpdateController restarted(timers);
            restarted.setAlerts(alerts);
            restarted.start();
            auto data = stores.vault().snapshot();
            EXPECT_EQ(data->updateApplyAttempted, std::nullopt);
            EXPECT_EQ(data->updateApplyFailed, row.failedAfter);
            EXPECT_EQ(alerts->shown,
                start == 0 && row.alert ? std::vector<std::string> { row.alert } : std::vector<std::string> {});
        }
        EXPECT_EQ(std::filesystem::exists(InstallSwap::previousOf(install.root())), row.alert != nullptr)
            << "the tree put aside goes once the new version has started";
        EXPECT_EQ(std::filesystem::exists(AppInfo::updaterCacheDirectory()), row.alert != nullptr);
    }
}

TEST_F(UpdateControllerTest, AVersionThatFailedToInstallIsNotOfferedAgain)
{
    stores.vault().update([](VaultData& data) { data.updateApplyFailed = "0.2.0"; });
    controller.start();
    UpdateChoice found = UpdateChoice::skip;
    driver->showUpdateFound({ "20", "0.2.0", "https://x/v.tar.xz" }, [&](UpdateChoice c) { found = c; });
    EXPECT_EQ(found, UpdateChoice::dismiss) << "dismissed without a word";
    controller.updaterDidFinishUpdateCycle(std::nullopt);
    EXPECT_TRUE(controller.lastCheckWasClean());

    // The second guard, when the staged version is the failed one: logged, and for a manual check asked about.
    controller.checkForUpdates();
    LogCapture log;
    UpdateChoice staged = UpdateChoice::skip;
    controller.stage("0.2.0", [&](UpdateChoice c) { staged = c; });
    controller.updaterDidFinishUpdateCycle(std::nullopt);
    expectOneLine(log, "0.2.0 was applied before and did not install; not offering it again");
    EXPECT_EQ(staged, UpdateChoice::dismiss);
    EXPECT_FALSE(controller.lastCheckWasClean());
    EXPECT_TRUE(alerts->shown.empty()) << "the question comes after the check has ended";
    timers.runDue();
    ASSERT_EQ(alerts->shown.size(), 1u);
    EXPECT_EQ(alerts->shown[0],
        "Velder 0.2.0 was not installed: Version 0.2.0 is available, but the last attempt to install it did not "
        "complete. You are running 0.1.0. It will not be offered automatically; the next release will be. [Try "
        "Again|Not Now]");
    alerts->answer(true);
    EXPECT_EQ(stores.vault().snapshot()->updateApplyFailed, std::nullopt);
    EXPECT_EQ(updater->manualChecks, 2);
}
