#include "core/AppInfo.h"
#include "core/Date.h"
#include "support/TestSupport.h"

#include <filesystem>
#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;

TEST(AppInfo, LocationsFollowTheXdgEnvironmentOnEachRead)
{
    ScopedEnv home("HOME", "/home/u");
    {
        ScopedEnv data("XDG_DATA_HOME", std::nullopt);
        ScopedEnv cache("XDG_CACHE_HOME", "relative/is/ignored");
        EXPECT_EQ(AppInfo::dataDirectory(), "/home/u/.local/share/Velder");
        EXPECT_EQ(AppInfo::vaultFile(), "/home/u/.local/share/Velder/vault.bin");
        EXPECT_EQ(AppInfo::archiveDirectory(), "/home/u/.cache/Velder/archive");
    }
    ScopedEnv data("XDG_DATA_HOME", "/p/data");
    ScopedEnv cache("XDG_CACHE_HOME", "/p/cache");
    EXPECT_EQ(AppInfo::keyFile(), "/p/data/Velder/vault.key");
    EXPECT_EQ(AppInfo::historyFile(), "/p/data/Velder/history.bin");
    EXPECT_EQ(AppInfo::faviconFile(), "/p/data/Velder/favicons.bin");
    EXPECT_EQ(AppInfo::engineDirectory(), "/p/data/Velder/engine");
    EXPECT_EQ(AppInfo::engineLogFile(), "/p/data/Velder/engine_log.txt");
    EXPECT_EQ(AppInfo::previousEngineLogFile(), "/p/data/Velder/engine_log.previous.txt");
    EXPECT_EQ(AppInfo::engineCacheDirectory(), "/p/cache/Velder/engine-cache");
    EXPECT_EQ(AppInfo::archiveDirectory(), "/p/cache/Velder/archive");
    EXPECT_FALSE(AppInfo::version().empty());
}

TEST(AppInfo, PrepareDirectoriesMakesOnlyTheDataFolder)
{
    TestProfile profile;
    AppInfo::prepareDirectories();
    EXPECT_TRUE(std::filesystem::is_directory(AppInfo::dataDirectory()));
    EXPECT_FALSE(std::filesystem::exists(AppInfo::cacheDirectory()));
}

TEST(AppInfo, TheEngineLogRotatesOnlyAboveTheLimit)
{
    TestProfile profile;
    AppInfo::prepareDirectories();
    const std::uint64_t limit = 5242880;

    writeBytes(AppInfo::engineLogFile(), std::vector<std::uint8_t>(limit, 'a'));
    AppInfo::rotateEngineLogIfLarge(limit);
    EXPECT_TRUE(fileExists(AppInfo::engineLogFile())) << "a log of exactly the limit stays";
    EXPECT_FALSE(fileExists(AppInfo::previousEngineLogFile()));

    writeBytes(AppInfo::previousEngineLogFile(), { 'o', 'l', 'd' });
    writeBytes(AppInfo::engineLogFile(), std::vector<std::uint8_t>(limit + 1, 'b'));
    AppInfo::rotateEngineLogIfLarge(limit);
    EXPECT_FALSE(fileExists(AppInfo::engineLogFile()));
    EXPECT_EQ(readBytes(AppInfo::previousEngineLogFile()).size(), limit + 1) << "it replaces the earlier one";

    AppInfo::rotateEngineLogIfLarge(limit); // no log at all: nothing happens
    EXPECT_EQ(readBytes(AppInfo::previousEngineLogFile()).size(), limit + 1);
}

TEST(Date, Iso8601InWholeSecondsUtc)
{
    auto date = parseIso8601("2026-11-20T08:00:00Z");
    ASSERT_TRUE(date);
    EXPECT_EQ(formatIso8601(*date + std::chrono::milliseconds(999)), "2026-11-20T08:00:00Z");
    EXPECT_EQ(parseIso8601("2026-11-20T09:30:00+01:30"), date);
    EXPECT_EQ(formatIso8601(*parseIso8601("1999-12-31T23:59:59-00:30")), "2000-01-01T00:29:59Z");
    for (const char* bad : { "", "2026-11-20", "2026-11-20T08:00:00", "2026-13-01T00:00:00Z", "2026-02-30T00:00:00Z",
             "2026-11-20T24:00:00Z", "2026-11-20T08:00:00.5Z", "2026-11-20 08:00:00Z", "2026-11-20T08:00:00+0100" }) {
        SCOPED_TRACE(bad);
        EXPECT_FALSE(parseIso8601(bad));
    }
}
