#include "core/Vault.h"
#include "core/Log.h"
#include "core/NotificationCenter.h"
#include "support/TestSupport.h"

#include "CoreTestSupport.h"

#include <atomic>
#include <filesystem>
#include <gtest/gtest.h>
#include <thread>

using namespace velder;
using namespace velder::test;
using namespace std::chrono_literals;

namespace {

// Counts "Velder.settingsDidChange" and remembers on which thread it came.
struct SettingsObserver {
    std::atomic<int> count { 0 };
    std::thread::id thread;
    NotificationCenter::Token token = NotificationCenter::defaultCenter().addObserver(
        Vault::settingsDidChangeNotification, [this](const Notification&) {
            thread = std::this_thread::get_id();
            ++count;
        });
};

} // namespace

TEST(Vault, NotificationsFollowSettingsChangesOnly)
{
    TempDir dir;
    Vault vault(dir.file("vault.bin"), testDataKey());
    SettingsObserver observer;

    vault.update([](VaultData& data) { data.settings.maxHistory = 5000; }); // its current value
    vault.flushNow();
    EXPECT_EQ(observer.count, 0);
    EXPECT_FALSE(fileExists(dir.file("vault.bin"))) << "an update that changes nothing writes nothing";

    vault.update([](VaultData& data) { data.currentZoomLevel = 2; });
    vault.update([](VaultData& data) { data.windows.push_back({ { "https://a.example/" }, 0 }); });
    EXPECT_EQ(observer.count, 0) << "fields outside the settings don't notify";
    vault.flushNow();
    EXPECT_TRUE(fileExists(dir.file("vault.bin")));

    // Observers run on the calling thread once the lock is released: they can read the new state.
    std::string seen;
    auto reader = NotificationCenter::defaultCenter().addObserver(
        Vault::settingsDidChangeNotification, [&](const Notification&) { seen = vault.snapshot()->settings.homepage; });
    std::thread([&] { vault.update([](VaultData& data) { data.settings.homepage = "https://h.example/"; }); }).join();
    EXPECT_EQ(observer.count, 1);
    EXPECT_NE(observer.thread, std::this_thread::get_id());
    EXPECT_EQ(seen, "https://h.example/");
}

TEST(Vault, SnapshotsDontChangeUnderTheirReader)
{
    TempDir dir;
    Vault vault(dir.file("vault.bin"), testDataKey());
    auto before = vault.snapshot();
    vault.update([](VaultData& data) { data.dashboardIgnored.push_back("z.example"); });
    EXPECT_TRUE(before->dashboardIgnored.empty());
    EXPECT_EQ(vault.snapshot()->dashboardIgnored.size(), 1u);
    EXPECT_EQ(vault.snapshot().get(), vault.snapshot().get()) << "a snapshot shares the record, it doesn't copy it";
}

TEST(Vault, AFailedSaveStaysDirtyForTheNextFlush)
{
    TempDir dir;
    std::string folder = dir.file("later");
    Vault vault(folder + "/vault.bin", testDataKey());
    vault.update([](VaultData& data) { data.settings.homepage = "https://h.example/"; });
    LogCapture log;
    vault.flushNow();
    expectOneLine(log, "vault.bin could not be written (\xE2\x80\xA6).");

    std::filesystem::create_directories(folder);
    vault.flushNow();
    EXPECT_EQ(SecureJsonFile<VaultData>(folder + "/vault.bin", testDataKey()).load(VaultData()).settings.homepage,
        "https://h.example/");
}

TEST(Vault, WithoutAKeyEverythingWorksInMemoryAndQuitDoesntHang)
{
    TempDir dir;
    LogCapture log;
    Vault vault(dir.file("vault.bin"), std::nullopt);
    vault.update([](VaultData& data) { data.settings.textColor = "white"; });
    EXPECT_EQ(vault.snapshot()->settings.textColor, "white");
    vault.flushNow();
    vault.flushNow();
    EXPECT_FALSE(fileExists(dir.file("vault.bin")));
    EXPECT_TRUE(log.lines().empty());
}
