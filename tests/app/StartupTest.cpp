// Velder as a whole process: how it starts, hands over to a running Velder, and quits.

#include "core/AesGcm.h"
#include "core/HistoryData.h"
#include "core/KeychainKey.h"
#include "core/SecureJsonFile.h"
#include "core/VaultData.h"
#include "support/ChildProcess.h"
#include "support/MainLoop.h"
#include "support/RealInput.h"
#include "support/TestServer.h"
#include "support/TestSupport.h"

#include <csignal>
#include <filesystem>
#include <gdk/gdkkeysyms.h>
#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;
using namespace std::chrono_literals;

namespace {

// Each test has a session bus of its own: a running Velder is found through the session bus, and tests
// running side by side must not find each other's.
std::map<std::string, std::optional<std::string>> profileEnvironment(const TempDir& root, const PrivateBus& bus)
{
    return { { "XDG_DATA_HOME", root.file("data") }, { "XDG_CACHE_HOME", root.file("cache") },
        { "HOME", root.file("home") }, { "DBUS_SESSION_BUS_ADDRESS", bus.address() } };
}

template<class Data> Data saved(const TempDir& root, const std::string& file)
{
    std::string folder = root.file("data") + "/Velder";
    auto key = KeychainKey::loadOrCreate(folder + "/vault.key");
    return SecureJsonFile<Data>(folder + "/" + file, key).load(Data());
}

VaultData savedVault(const TempDir& root)
{
    return saved<VaultData>(root, "vault.bin");
}

// Velder has opened its first window (it logs the window's geometry then).
::testing::AssertionResult showsAWindow(ChildProcess& velder)
{
    if (velder.waitForLine("Velder: chrome geometry", 60s)) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << "no window: " << velder.errorText();
}

// SIGTERM quits Velder in order, with status 0.
::testing::AssertionResult quits(ChildProcess& velder)
{
    velder.signal(SIGTERM);
    if (auto status = velder.wait(30s); status == 0) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << "no quit in order: " << velder.errorText();
}

// The middle of the first window, which opens centred on the test's 1600x1000 screen.
constexpr int windowMiddleX = 800;
constexpr int windowMiddleY = 500;

} // namespace

TEST(Startup, WithoutADisplayVelderSaysWhyAndExitsWithOne)
{
    TempDir root;
    PrivateBus bus;
    auto environment = profileEnvironment(root, bus);
    environment["DISPLAY"] = std::nullopt;
    environment["WAYLAND_DISPLAY"] = std::nullopt;
    ChildProcess velder({ VELDER_BINARY }, environment);
    EXPECT_EQ(velder.wait(30s), 1);
    EXPECT_EQ(velder.errorText(), "Velder could not start.\nCannot open a display.\n");
    EXPECT_TRUE(fileExists(root.file("data") + "/Velder")) << "the data folder is prepared before the engine";
}

TEST(Startup, ASecondLaunchHandsItsAddressToTheRunningVelder)
{
    TempDir root;
    PrivateBus bus;
    ASSERT_FALSE(bus.address().empty());
    auto environment = profileEnvironment(root, bus);
    ChildProcess first({ VELDER_BINARY, "about:blank" }, environment);
    ASSERT_TRUE(showsAWindow(first));

    // The running Velder's log has grown past the limit at which a starting Velder rotates it: a launch that
    // hands over must not, nor touch any other file.
    std::string log = root.file("data") + "/Velder/engine_log.txt";
    writeBytes(log, std::vector<std::uint8_t>(5242881, 'x'));
    ChildProcess second({ VELDER_BINARY, "about:history", "about:settings" }, environment);
    EXPECT_EQ(second.wait(30s), 0) << second.errorText();
    EXPECT_FALSE(fileExists(root.file("data") + "/Velder/engine_log.previous.txt"));

    EXPECT_TRUE(quits(first));
    VaultData saved = savedVault(root);
    ASSERT_EQ(saved.windows.size(), 1u);
    EXPECT_EQ(
        saved.windows[0].tabs, (std::vector<std::string> { "about:blank", "velder://history/", "velder://settings/" }));
    EXPECT_EQ(saved.windows[0].activeTab, 1) << "the first address handed over is the active tab";
}

// Every address of the command line opens, in one window, the first active; a switch among them (here an
// invalid debugging port) is no address. A private window asked for from cold then is all that opens, and its
// page reaches neither the history nor the saved windows; the session saved before stays as it was.
TEST(Startup, EveryAddressOpensAndAPrivateWindowFromColdLeavesNoTrace)
{
    TempDir root;
    PrivateBus bus;
    TestServer server;
    server.route("/secret", TestResponse::html("<title>Secret</title><img src=/shown>"));
    server.route("/shown", TestResponse::html(""));
    auto environment = profileEnvironment(root, bus);
    {
        ChildProcess before(
            { VELDER_BINARY, "about:blank", "--remote-debugging-port=0", "about:history", "about:settings" },
            environment);
        ASSERT_TRUE(showsAWindow(before));
        ASSERT_TRUE(quits(before));
    }
    ChildProcess velder({ VELDER_BINARY, "--private-window", server.url("/secret") }, environment);
    // The page has arrived when it asks for its image; the loop answers the child meanwhile.
    ASSERT_TRUE(runMainLoopUntil([&] { return server.received("/shown"); }, 60s)) << velder.errorText();
    EXPECT_TRUE(quits(velder));
    VaultData vault = savedVault(root);
    ASSERT_EQ(vault.windows.size(), 1u);
    EXPECT_EQ(
        vault.windows[0].tabs, (std::vector<std::string> { "about:blank", "velder://history/", "velder://settings/" }));
    EXPECT_EQ(vault.windows[0].activeTab, 0);
    EXPECT_TRUE(saved<HistoryData>(root, "history.bin").entries.empty());
}

// Two profiles on one session bus run side by side, each with its own page.
TEST(Startup, TwoProfilesRunSideBySide)
{
    TempDir first;
    TempDir second;
    PrivateBus bus;
    ChildProcess one({ VELDER_BINARY, "about:blank" }, profileEnvironment(first, bus));
    ASSERT_TRUE(showsAWindow(one));
    ChildProcess two({ VELDER_BINARY, "about:history" }, profileEnvironment(second, bus));
    ASSERT_TRUE(two.waitForLine("Velder: chrome geometry", 60s)) << "the second profile handed over";
    EXPECT_TRUE(quits(one));
    EXPECT_TRUE(quits(two));
    EXPECT_EQ(savedVault(first).windows.at(0).tabs, std::vector<std::string> { "about:blank" });
    EXPECT_EQ(savedVault(second).windows.at(0).tabs, std::vector<std::string> { "velder://history/" });
}

TEST(Startup, CtrlQInAPageQuitsAndSavesTheSession)
{
    TempDir root;
    PrivateBus bus;
    ChildProcess velder({ VELDER_BINARY, "velder://about/" }, profileEnvironment(root, bus));
    ASSERT_TRUE(showsAWindow(velder));
    if (!RealInput::pressKeyOnScreen(windowMiddleX, windowMiddleY, GDK_KEY_q, { GDK_KEY_Control_L })) {
        velder.signal(SIGTERM);
        GTEST_SKIP() << "needs XTest";
    }
    EXPECT_EQ(velder.wait(30s), 0) << velder.errorText();
    VaultData saved = savedVault(root);
    ASSERT_EQ(saved.windows.size(), 1u);
    EXPECT_EQ(saved.windows[0].tabs, std::vector<std::string> { "velder://about/" });
}

// On Wayland, where windows have no positions, a saved size still comes back. Under a headless Weston of
// the test's own, when Debian's weston is installed.
TEST(Startup, OnWaylandTheSavedSizeComesBack)
{
    if (!fileExists("/usr/bin/weston")) {
        GTEST_SKIP() << "needs weston";
    }
    TempDir root;
    PrivateBus bus;
    std::string runtime = root.file("runtime");
    std::filesystem::create_directories(runtime);
    std::filesystem::permissions(runtime, std::filesystem::perms::owner_all);
    ChildProcess weston({ "/usr/bin/weston", "--backend=headless-backend.so", "--socket=wayland-velder", "--width=1600",
                            "--height=1000", "--shell=desktop-shell.so" },
        { { "XDG_RUNTIME_DIR", runtime } });
    ASSERT_TRUE(weston.waitForLine("launching", 20s)) << weston.errorText();

    std::string folder = root.file("data") + "/Velder";
    std::filesystem::create_directories(folder);
    VaultData vault;
    vault.windows = { { { "about:blank" }, 0, 0, 0, 900, 650 } };
    ASSERT_TRUE(
        SecureJsonFile<VaultData>(folder + "/vault.bin", KeychainKey::loadOrCreate(folder + "/vault.key")).save(vault));

    auto environment = profileEnvironment(root, bus);
    environment["XDG_RUNTIME_DIR"] = runtime;
    environment["WAYLAND_DISPLAY"] = "wayland-velder";
    environment["GDK_BACKEND"] = "wayland";
    environment["DISPLAY"] = std::nullopt;
    ChildProcess velder({ VELDER_BINARY }, environment);
    ASSERT_TRUE(showsAWindow(velder));
    EXPECT_TRUE(quits(velder));
    EXPECT_NE(velder.errorText().find("window 0,0 900x650"), std::string::npos) << velder.errorText();
    weston.signal(SIGTERM);
    weston.wait(10s);
}
