// Velder as a whole process: how it starts, hands over to a running Velder, and quits.

#include "core/AesGcm.h"
#include "core/KeychainKey.h"
#include "core/SecureJsonFile.h"
#include "core/VaultData.h"
#include "support/ChildProcess.h"
#include "support/TestSupport.h"

#include <csignal>
#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;
using namespace std::chrono_literals;

namespace {

std::map<std::string, std::optional<std::string>> profileEnvironment(const TempDir& root)
{
    return { { "XDG_DATA_HOME", root.file("data") }, { "XDG_CACHE_HOME", root.file("cache") },
        { "HOME", root.file("home") } };
}

VaultData savedVault(const TempDir& root)
{
    std::string folder = root.file("data") + "/Velder";
    auto key = KeychainKey::loadOrCreate(folder + "/vault.key");
    return SecureJsonFile<VaultData>(folder + "/vault.bin", key).load(VaultData());
}

} // namespace

TEST(Startup, WithoutADisplayVelderSaysWhyAndExitsWithOne)
{
    TempDir root;
    auto environment = profileEnvironment(root);
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
    ChildProcess velder({ VELDER_BINARY, "--remote-debugging-port=0", "about:blank" }, profileEnvironment(root));
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
    auto environment = profileEnvironment(root);
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
