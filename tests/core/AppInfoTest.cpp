#include "core/AppInfo.h"
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
        EXPECT_EQ(AppInfo::vaultFile(), "/home/u/.local/share/Velder/vault.bin");
        EXPECT_EQ(AppInfo::archiveDirectory(), "/home/u/.cache/Velder/archive");
    }
    ScopedEnv data("XDG_DATA_HOME", "/p/data");
    ScopedEnv cache("XDG_CACHE_HOME", "/p/cache");
    EXPECT_EQ(AppInfo::historyFile(), "/p/data/Velder/history.bin");
    EXPECT_EQ(AppInfo::engineCacheDirectory(), "/p/cache/Velder/engine-cache");
    EXPECT_EQ(AppInfo::updaterCacheDirectory(), "/p/cache/Velder/updater");
}

TEST(AppInfo, PrepareMakesTheDataFolderAndTheEngineLogRotatesAboveTheLimit)
{
    TestProfile profile;
    AppInfo::prepareDirectories();
    EXPECT_TRUE(std::filesystem::is_directory(AppInfo::dataDirectory()));
    EXPECT_FALSE(std::filesystem::exists(AppInfo::cacheDirectory())) << "only the data folder is made";
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
