#include "update/VelderUpdater.h"
#include "core/AppInfo.h"
#include "core/InstallSwap.h"
#include "core/Log.h"
#include "core/ManualTimers.h"
#include "core/UpdateController.h"
#include "support/FakeUpdateAlerts.h"
#include "support/MainLoop.h"
#include "support/ScopedInstall.h"
#include "support/ScopedStores.h"
#include "support/TestServer.h"
#include "support/TestSigner.h"

#include <archive.h>
#include <archive_entry.h>
#include <filesystem>
#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;
namespace fs = std::filesystem;

namespace {

struct Entry {
    std::string path;
    std::string content;
    std::string linkTarget; // a symbolic link when set
};

// A .tar.xz of the entries, as scripts/package makes it.
std::string tarXz(const std::vector<Entry>& entries)
{
    std::vector<char> buffer(1 << 20);
    size_t used = 0;
    archive* writer = archive_write_new();
    archive_write_add_filter_xz(writer);
    archive_write_set_format_pax_restricted(writer);
    archive_write_open_memory(writer, buffer.data(), buffer.size(), &used);
    for (const Entry& each : entries) {
        archive_entry* entry = archive_entry_new();
        archive_entry_set_pathname(entry, each.path.c_str());
        archive_entry_set_perm(entry, 0755);
        if (each.linkTarget.empty()) {
            archive_entry_set_filetype(entry, AE_IFREG);
            archive_entry_set_size(entry, static_cast<la_int64_t>(each.content.size()));
        } else {
            archive_entry_set_filetype(entry, AE_IFLNK);
            archive_entry_set_symlink(entry, each.linkTarget.c_str());
        }
        archive_write_header(writer, entry);
        archive_write_data(writer, each.content.data(), each.content.size());
        archive_entry_free(entry);
    }
    archive_write_close(writer);
    archive_write_free(writer);
    return std::string(buffer.data(), used);
}

const std::vector<Entry> release { { "./bin/velder", "#!new" },
    { "./share/velder/velder-info.json", R"({"CFBundleShortVersionString":"0.2.0"})" } };

// A user install of 0.1.0 whose feed is a loopback server pinned by its own certificate, with a controller
// that runs Velder's backend; relaunching only notes the program.
class VelderUpdaterTest : public testing::Test {
protected:
    VelderUpdaterTest()
    {
        writeBytes(install.root() + "/share/velder/anchors.pem",
            std::vector<std::uint8_t>(server.certificatePem().begin(), server.certificatePem().end()));
        controller.setAlerts(alerts);
        controller.setBackend([this](UpdateController& owner, UpdateUserDriver& driver) {
            return std::make_unique<VelderUpdater>(
                owner, driver, *BuildInfo::installed(), [this](const std::string& program) { relaunched = program; });
        });
    }

    // The feed offers one item; the archive is served as given.
    void publish(const std::string& version, const std::string& archive, const std::string& signature,
        std::optional<size_t> length = std::nullopt)
    {
        std::string url = server.url("/velder-" + version + ".tar.xz");
        server.route("/appcast.xml",
            TestResponse { 200, "application/rss+xml",
                "<rss xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\"><channel><item>"
                "<sparkle:version>"
                    + version + "</sparkle:version><enclosure url=\"" + url + "\" length=\""
                    + std::to_string(length.value_or(archive.size())) + "\" sparkle:edSignature=\"" + signature
                    + "\"/></item></channel></rss>" });
        server.route("/velder-" + version + ".tar.xz", TestResponse { 200, "application/x-xz", archive });
    }

    std::string signed_(const std::string& archive) const
    {
        return publisher.sign(std::vector<std::uint8_t>(archive.begin(), archive.end()));
    }

    // Starts the controller, which checks at once, and waits for the check's end.
    void check()
    {
        controller.start();
        ASSERT_TRUE(runMainLoopUntil([&] { return controller.state().value != UpdateState::Case::checking; }));
    }

    TestServer server { TestServer::Scheme::pinnedHttps };
    ScopedStores stores;
    TestSigner publisher;
    ScopedInstall install { { { "SUFeedURL", server.url("/appcast.xml") }, { "SUPublicEDKey", publisher.publicKey() },
        { "CFBundleShortVersionString", "0.1.0" }, { "FeedTrustAnchors", "anchors.pem" } } };
    ManualTimers timers;
    UpdateController controller { timers };
    std::shared_ptr<FakeUpdateAlerts> alerts = std::make_shared<FakeUpdateAlerts>();
    std::optional<std::string> relaunched;
};

} // namespace

TEST_F(VelderUpdaterTest, NothingNewerEndsACleanCheck)
{
    publish("0.1.0", tarXz(release), signed_(tarXz(release)));
    check();
    EXPECT_EQ(controller.state(), UpdateState::idle());
    EXPECT_TRUE(controller.lastCheckWasClean());
    EXPECT_FALSE(server.received("/velder-0.1.0.tar.xz"));
}

TEST_F(VelderUpdaterTest, AnUnpinnedServerIsNotTrusted)
{
    TestServer stranger(TestServer::Scheme::pinnedHttps);
    writeBytes(install.root() + "/share/velder/anchors.pem",
        std::vector<std::uint8_t>(stranger.certificatePem().begin(), stranger.certificatePem().end()));
    publish("0.2.0", tarXz(release), signed_(tarXz(release)));
    check();
    EXPECT_FALSE(controller.lastCheckWasClean());
    EXPECT_FALSE(server.received("/velder-0.2.0.tar.xz"));
}

TEST_F(VelderUpdaterTest, ARefusedArchiveIsLoggedAndDeleted)
{
    std::string good = tarXz(release);
    std::string tampered = good;
    tampered[tampered.size() / 2] ^= 1;
    std::vector<Entry> climbing = release;
    climbing.push_back({ "./share/../../escaped", "x" });
    std::string climbingArchive = tarXz(climbing);
    std::vector<Entry> linking = release;
    linking.push_back({ "./lib/out", "", "../../../etc" });
    std::string linkingArchive = tarXz(linking);
    TestSigner stranger;
    struct Row {
        const char* name;
        std::string archive;
        std::string signature;
        std::optional<size_t> length;
        const char* reason;
    };
    const Row rows[] = {
        { "tampered", tampered, signed_(good), {}, "the update's signature does not match this build's key" },
        { "another key", good, stranger.sign({ good.begin(), good.end() }), {},
            "the update's signature does not match this build's key" },
        { "unsigned", good, "", {}, "the update is not signed" },
        { "a wrong length", good, signed_(good), good.size() + 1, "it is " },
        { "a ../ entry", climbingArchive, signed_(climbingArchive), {}, "the entry \"./share/../../escaped\" climbs" },
        { "a link outside", linkingArchive, signed_(linkingArchive), {}, "the link \"./lib/out\" points outside" },
    };
    check(); // nothing published yet
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        publish("0.2.0", row.archive, row.signature, row.length);
        LogCapture log;
        controller.checkForUpdates();
        ASSERT_TRUE(runMainLoopUntil([&] { return controller.state().value != UpdateState::Case::checking; }));
        auto refused = log.linesStartingWith("Velder: refused the update 0.2.0 \xe2\x80\x94 ");
        ASSERT_EQ(refused.size(), 1u);
        EXPECT_NE(refused[0].find(row.reason), std::string::npos) << refused[0];
        EXPECT_FALSE(controller.lastCheckWasClean());
        EXPECT_TRUE(fs::is_empty(VelderUpdater::downloadsDirectory())) << "the download is deleted";
        EXPECT_FALSE(fs::exists(VelderUpdater::installationDirectory() + "/0.2.0"));
        EXPECT_FALSE(fs::exists(install.root() + "/../escaped"));
        alerts->shown.clear();
    }
}

TEST_F(VelderUpdaterTest, ASignedUpdateIsStagedInstalledAndJudgedAtTheNextStart)
{
    std::string archive = tarXz(release);
    publish("0.2.0", archive, signed_(archive));
    check();
    EXPECT_EQ(controller.state(), UpdateState::staged("0.2.0"));
    EXPECT_EQ(readBytes(VelderUpdater::downloadsDirectory() + "/velder-0.2.0.tar.xz").size(), archive.size());
    EXPECT_TRUE(fs::exists(VelderUpdater::installationDirectory() + "/0.2.0/bin/velder"));

    controller.applyStagedUpdate();
    EXPECT_EQ(relaunched, install.root() + "/bin/velder");
    EXPECT_EQ(readBytes(install.root() + "/bin/velder"), (std::vector<std::uint8_t> { '#', '!', 'n', 'e', 'w' }));
    EXPECT_TRUE(fs::exists(InstallSwap::previousOf(install.root()) + "/bin/velder"));
    EXPECT_EQ(AppInfo::version(), "0.2.0");
    EXPECT_EQ(stores.vault().snapshot()->updateApplyAttempted, "0.2.0");

    UpdateController restarted(timers);
    restarted.setAlerts(alerts);
    restarted.start();
    EXPECT_EQ(stores.vault().snapshot()->updateApplyAttempted, std::nullopt);
    EXPECT_EQ(stores.vault().snapshot()->updateApplyFailed, std::nullopt);
    EXPECT_TRUE(alerts->shown.empty());
    EXPECT_FALSE(fs::exists(InstallSwap::previousOf(install.root())));
}
