// Velder as a whole process: how it starts, hands over to a running Velder, and quits.

#include "core/AesGcm.h"
#include "core/KeychainKey.h"
#include "core/SecureJsonFile.h"
#include "core/VaultData.h"
#include "support/ChildProcess.h"
#include "support/RealInput.h"
#include "support/TestSupport.h"

#include <csignal>
#include <gdk/gdkkeysyms.h>
#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;
using namespace std::chrono_literals;

namespace {

// A session bus of the test's own: a running Velder is found through the session bus, and tests running side
// by side must not find each other's.
class PrivateSessionBus {
public:
    PrivateSessionBus()
        : m_daemon({ "/usr/bin/dbus-daemon", "--session", "--nofork", "--print-address=2" })
    {
        m_daemon.waitForLine("unix:", 10s);
        for (const auto& line : m_daemon.errorLines()) {
            if (line.starts_with("unix:")) {
                m_address = line;
            }
        }
    }
    ~PrivateSessionBus() { m_daemon.signal(SIGTERM); }
    const std::string& address() const { return m_address; }

private:
    ChildProcess m_daemon;
    std::string m_address;
};

std::map<std::string, std::optional<std::string>> profileEnvironment(const TempDir& root, const PrivateSessionBus& bus)
{
    return { { "XDG_DATA_HOME", root.file("data") }, { "XDG_CACHE_HOME", root.file("cache") },
        { "HOME", root.file("home") }, { "DBUS_SESSION_BUS_ADDRESS", bus.address() } };
}

VaultData savedVault(const TempDir& root)
{
    std::string folder = root.file("data") + "/Velder";
    auto key = KeychainKey::loadOrCreate(folder + "/vault.key");
    return SecureJsonFile<VaultData>(folder + "/vault.bin", key).load(VaultData());
}

// The middle of the first window, which opens centred on the test's 1600x1000 screen.
constexpr int windowMiddleX = 800;
constexpr int windowMiddleY = 500;

} // namespace

TEST(Startup, WithoutADisplayVelderSaysWhyAndExitsWithOne)
{
    TempDir root;
    PrivateSessionBus bus;
    auto environment = profileEnvironment(root, bus);
    environment["DISPLAY"] = std::nullopt;
    environment["WAYLAND_DISPLAY"] = std::nullopt;
    ChildProcess velder({ VELDER_BINARY }, environment);
    EXPECT_EQ(velder.wait(30s), 1);
    EXPECT_EQ(velder.errorText(), "Velder could not start.\nCannot open a display.\n");
    EXPECT_TRUE(fileExists(root.file("data") + "/Velder")) << "the data folder is prepared before the engine";
}

TEST(Startup, SigtermQuitsInOrderAndTheSessionReachesTheDisk)
{
    TempDir root;
    PrivateSessionBus bus;
    ChildProcess velder({ VELDER_BINARY, "--remote-debugging-port=0", "about:blank" }, profileEnvironment(root, bus));
    ASSERT_TRUE(velder.waitForLine("Velder: chrome geometry", 60s)) << velder.errorText();
    velder.signal(SIGTERM);
    EXPECT_EQ(velder.wait(30s), 0) << velder.errorText();

    VaultData saved = savedVault(root);
    ASSERT_EQ(saved.windows.size(), 1u) << velder.errorText();
    EXPECT_EQ(saved.windows[0].tabs, std::vector<std::string> { "about:blank" });
}

TEST(Startup, ASecondLaunchHandsItsAddressToTheRunningVelder)
{
    TempDir root;
    PrivateSessionBus bus;
    ASSERT_FALSE(bus.address().empty());
    auto environment = profileEnvironment(root, bus);
    ChildProcess first({ VELDER_BINARY, "about:blank" }, environment);
    ASSERT_TRUE(first.waitForLine("Velder: chrome geometry", 60s)) << first.errorText();

    ChildProcess second({ VELDER_BINARY, "about:history" }, environment);
    EXPECT_EQ(second.wait(30s), 0) << second.errorText();

    first.signal(SIGTERM);
    EXPECT_EQ(first.wait(30s), 0) << first.errorText();
    VaultData saved = savedVault(root);
    ASSERT_EQ(saved.windows.size(), 1u);
    EXPECT_EQ(saved.windows[0].tabs, (std::vector<std::string> { "about:blank", "velder://history/" }));
    EXPECT_EQ(saved.windows[0].activeTab, 1);
}

TEST(Startup, CtrlQInAPageQuitsAndSavesTheSession)
{
    TempDir root;
    PrivateSessionBus bus;
    ChildProcess velder({ VELDER_BINARY, "velder://about/" }, profileEnvironment(root, bus));
    ASSERT_TRUE(velder.waitForLine("Velder: chrome geometry", 60s)) << velder.errorText();
    if (!RealInput::pressKeyOnScreen(windowMiddleX, windowMiddleY, GDK_KEY_q, { GDK_KEY_Control_L })) {
        velder.signal(SIGTERM);
        GTEST_SKIP() << "needs XTest";
    }
    EXPECT_EQ(velder.wait(30s), 0) << velder.errorText();
    VaultData saved = savedVault(root);
    ASSERT_EQ(saved.windows.size(), 1u);
    EXPECT_EQ(saved.windows[0].tabs, std::vector<std::string> { "velder://about/" });
}
