// Files sealed by another implementation of the format (../shared/testdata/stored) must read the same.

#include "core/AesGcm.h"
#include "core/AppInfo.h"
#include "core/FaviconStore.h"
#include "core/HistoryStore.h"
#include "core/KeychainKey.h"
#include "core/Log.h"
#include "core/Vault.h"
#include "support/TestSupport.h"

#include "CoreTestSupport.h"

#include <filesystem>
#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;

namespace {

std::string stored(const std::string& name)
{
    return testDataPath("stored/" + name);
}

// A profile holding the named history file, with the shared vault the history store asks for its limit.
class StoredHistory : public testing::Test {
protected:
    void use(const std::string& name)
    {
        std::filesystem::create_directories(AppInfo::dataDirectory());
        copyFile(stored(name), AppInfo::historyFile());
        Vault::setShared(std::make_shared<Vault>(AppInfo::vaultFile(), testDataKey()));
    }
    void TearDown() override { Vault::setShared(nullptr); }

    TestProfile profile;
};

} // namespace

TEST(StoredInterop, TheKeyFileIsRead)
{
    TempDir dir;
    copyFile(stored("vault.key"), dir.file("vault.key"));
    LogCapture log;
    EXPECT_EQ(KeychainKey::loadOrCreate(dir.file("vault.key")), testDataKey());
    EXPECT_TRUE(log.lines().empty());
}

TEST(StoredInterop, VaultReadsAsWritten)
{
    TempDir dir;
    copyFile(stored("vault.bin"), dir.file("vault.bin"));
    LogCapture log;
    Vault vault(dir.file("vault.bin"), testDataKey());
    EXPECT_TRUE(log.lines().empty());
    auto data = vault.snapshot();

    AppSettings expected;
    expected.homepage = "https://home.example/";
    expected.textColor = "white";
    expected.locationEnabled = true;
    expected.maxHistory = 100000;
    EXPECT_EQ(data->settings, expected);
    EXPECT_EQ(data->settingsVersion, 1);

    ASSERT_EQ(data->windows.size(), 2u);
    EXPECT_EQ(data->windows[0],
        (WindowSession { { "https://a.example/", "velder://history/" }, 1, 10, 20, 900, 700, WindowState::normal }));
    EXPECT_EQ(data->windows[1],
        (WindowSession {
            { "about:blank" }, 0, std::nullopt, std::nullopt, std::nullopt, std::nullopt, WindowState::zoomed }));

    EXPECT_EQ(data->locationSites,
        (std::map<std::string, bool> {
            { "https://A.example", true }, { "http://b.example:8080", false }, { "Https://c.example", true } }));
    EXPECT_EQ(data->dashboardPins,
        (std::vector<DashboardPin> {
            { "a.example", "https://a.example/x", std::nullopt }, { "b.example", "https://b.example/", "Bee" } }));
    EXPECT_EQ(data->dashboardIgnored, std::vector<std::string> { "z.example" });
    EXPECT_EQ(data->currentZoomLevel, 2.5);
    EXPECT_EQ(data->lastUpdateCheckUtc, at("2026-11-01T12:30:45Z"));
    EXPECT_FALSE(data->updateApplyAttempted);
    EXPECT_EQ(data->updateApplyFailed, "2.0.1");

    // The file keeps what the load normalised until the next write, which drops the unknown keys.
    EXPECT_EQ(
        SecureJsonFile<VaultData>(dir.file("vault.bin"), testDataKey()).load(VaultData()).settings.maxHistory, 200000);
    vault.update([](VaultData& d) { d.currentZoomLevel = 1; });
    vault.flushNow();
    auto plaintext = AesGcm::open(testDataKey(), readBytes(dir.file("vault.bin")));
    ASSERT_TRUE(plaintext);
    std::string json(plaintext->begin(), plaintext->end());
    expectParts(json, { R"("MaxHistory":100000)", R"("Https://c.example":true)" }, { "Zzz", "NoSuchSetting" });
}

TEST(StoredInterop, BrokenVaultsStartFreshAndStayOnDisk)
{
    for (const char* name : { "vault-wrong-key.bin", "vault-short.bin", "vault-tampered.bin", "vault-array.bin",
             "vault-window-without-tabs.bin", "vault-null-homepage.bin" }) {
        SCOPED_TRACE(name);
        TempDir dir;
        copyFile(stored(name), dir.file("vault.bin"));
        auto bytes = readBytes(dir.file("vault.bin"));
        LogCapture log;
        Vault vault(dir.file("vault.bin"), testDataKey());
        EXPECT_EQ(*vault.snapshot(), VaultData());
        expectOneLine(log, "vault.bin could not be read (\xE2\x80\xA6); starting fresh.");
        vault.flushNow();
        EXPECT_EQ(readBytes(dir.file("vault.bin")), bytes);
    }
}

TEST_F(StoredHistory, ReadsAsWrittenKeepingTheFirstOfEachAddress)
{
    use("history.bin");
    LogCapture log;
    HistoryStore history(AppInfo::historyFile(), testDataKey());
    EXPECT_TRUE(log.lines().empty());
    auto entries = history.entries();
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0], (HistoryEntry { "https://a.example/", "A <b>&</b>", at("2026-11-20T08:00:00Z"), 3 }));
    auto brief = [](const HistoryEntry& e) { return std::tuple(e.url, e.title, e.visitCount); };
    EXPECT_EQ(brief(entries[1]), std::tuple("https://www.b.example/page", "", 1));
    EXPECT_EQ(brief(entries[2]),
        std::tuple("https://c.example/\xC3\xBC?q=1#f",
            "\xC3\x9Cn\xC3\xAF"
            "code \xE2\x9C\x93",
            2));
    EXPECT_EQ(history.suggestions("\xC3\x9CN\xC3\x8F", 8).size(), 1u);
}

TEST_F(StoredHistory, WithoutAVisitCountStartsFresh)
{
    use("history-missing-count.bin");
    auto bytes = readBytes(AppInfo::historyFile());
    LogCapture log;
    HistoryStore history(AppInfo::historyFile(), testDataKey());
    EXPECT_EQ(history.count(), 0u);
    expectOneLine(log, "history.bin could not be read (\xE2\x80\xA6); starting fresh.");
    history.flushNow();
    EXPECT_EQ(readBytes(AppInfo::historyFile()), bytes);
}

TEST(StoredInterop, FaviconsReadAsWrittenWithoutEmptyEntries)
{
    TempDir dir;
    copyFile(stored("favicons.bin"), dir.file("favicons.bin"));
    LogCapture log;
    FaviconStore favicons(dir.file("favicons.bin"), testDataKey());
    EXPECT_TRUE(log.lines().empty());
    EXPECT_EQ(favicons.count(), 2u);
    EXPECT_EQ(favicons.dataUri("a.example"), "data:image/png;base64,iVBORw0KGgo=");
    EXPECT_TRUE(favicons.dataUri("B.example").has_value());
    EXPECT_FALSE(favicons.entry(""));

    // Written back, the inner keys stay as they stand below "Icons".
    ASSERT_TRUE(favicons.store(std::vector<std::uint8_t> { 'B', 'M', 0, 0 }, "c.example"));
    favicons.flushNow();
    auto plaintext = AesGcm::open(testDataKey(), readBytes(dir.file("favicons.bin")));
    ASSERT_TRUE(plaintext);
    std::string json(plaintext->begin(), plaintext->end());
    EXPECT_TRUE(json.starts_with(R"({"Icons":{"B.example":{"data":)")) << json;
    expectParts(json, { R"("c.example":{"data":"Qk0AAA==","fetchedUtc":")", R"(,"mime":"image/bmp"})" }, { "Mime" });
}
