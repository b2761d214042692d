#include "core/VersionArchive.h"

#include "core/AppInfo.h"
#include "core/Log.h"
#include "support/ScopedStores.h"

#include "CoreTestSupport.h"

#include <filesystem>
#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;
namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

std::string downloads(const std::string& name)
{
    return AppInfo::updaterCacheDirectory() + "/PersistentDownloads/" + name;
}

std::string installation(const std::string& name)
{
    return AppInfo::updaterCacheDirectory() + "/Installation/" + name;
}

class VersionArchiveTest : public testing::Test {
protected:
    void SetUp() override
    {
        stores.setSettings([](AppSettings& s) { s.archiveOldVersions = true; });
    }
    ScopedStores stores;
};

} // namespace

TEST_F(VersionArchiveTest, APayloadIsTheNewestFileAboveOneMebibyte)
{
    auto now = fs::file_time_type::clock::now();
    placeFile(downloads("exactly.bin"), 1048576, now);
    EXPECT_EQ(VersionArchive::newestStagedPayload(), std::nullopt);
    std::string older = placeFile(downloads("deep/down/.hidden.tar.xz"), 1048577, now - 60s);
    EXPECT_EQ(VersionArchive::newestStagedPayload(), older) << "hidden files and any depth count";
    std::string newer = placeFile(downloads("a/new.tar.xz"), 2000000, now - 10s);
    placeFile(installation("newest.tar.xz"), 5000000, now);
    EXPECT_EQ(VersionArchive::newestStagedPayload(), newer) << "downloads beat a newer file being installed";
    fs::remove_all(AppInfo::updaterCacheDirectory() + "/PersistentDownloads");
    EXPECT_EQ(VersionArchive::newestStagedPayload(), installation("newest.tar.xz"));
}

TEST_F(VersionArchiveTest, Capture)
{
    LogCapture log;
    EXPECT_FALSE(VersionArchive::capture()) << "nothing staged";
    placeFile(downloads("Velder-2.0.tar.xz"), 1048577);
    EXPECT_TRUE(VersionArchive::capture());
    EXPECT_FALSE(VersionArchive::capture()) << "the same file is archived already";
    placeFile(downloads("Velder-2.0.tar.xz"), 1048600);
    EXPECT_TRUE(VersionArchive::capture()) << "a same-named file of another size replaces the copy";
    EXPECT_EQ(fs::file_size(AppInfo::archiveDirectory() + "/Velder-2.0.tar.xz"), 1048600u);
    EXPECT_EQ(log.lines(),
        (std::vector<std::string> { "Velder: archived Velder-2.0.tar.xz", "Velder: archived Velder-2.0.tar.xz" }));

    stores.setSettings([](AppSettings& s) { s.archiveOldVersions = false; });
    placeFile(downloads("Velder-3.0.tar.xz"), 1048577, fs::file_time_type::clock::now() + 1s);
    EXPECT_FALSE(VersionArchive::capture()) << "archiving is off";
    EXPECT_FALSE(fileExists(AppInfo::archiveDirectory() + "/Velder-3.0.tar.xz"));
}

TEST_F(VersionArchiveTest, AFailedCaptureSaysWhy)
{
    placeFile(downloads("Velder-2.0.tar.xz"), 1048577);
    fs::create_directories(AppInfo::cacheDirectory());
    writeBytes(AppInfo::archiveDirectory(), { 1 }); // a file where the folder should be
    LogCapture log;
    EXPECT_FALSE(VersionArchive::capture());
    expectOneLine(log, "could not archive the staged payload \xE2\x80\x94 \xE2\x80\xA6");
}

TEST_F(VersionArchiveTest, ContentsAndPurge)
{
    EXPECT_EQ(VersionArchive::contents(), (VersionArchive::Contents { 0, 0 })) << "no folder";
    std::string archive = AppInfo::archiveDirectory();
    placeFile(archive + "/a.tar.xz", 1000);
    placeFile(archive + "/b.tar.xz", 2500);
    placeFile(archive + "/.hidden", 7777);
    placeFile(archive + "/folder/inside.tar.xz", 9999);
    EXPECT_EQ(VersionArchive::contents(), (VersionArchive::Contents { 2, 3500 }));
    VersionArchive::purge();
    EXPECT_FALSE(fileExists(archive));
    VersionArchive::purge(); // nothing there: ignored
    EXPECT_EQ(VersionArchive::contents(), (VersionArchive::Contents { 0, 0 }));
}

TEST(VersionArchive, Describe)
{
    struct Case {
        std::int64_t bytes;
        const char* text;
    };
    for (const Case& c : std::vector<Case> {
             { 0, "1 KB" },
             { 1023, "1 KB" },
             { 2047, "1 KB" },
             { 2048, "2 KB" },
             { 1048575, "1023 KB" },
             { 1048576, "1 MB" },
             { 1572864, "1 MB" },
             { 1073741823, "1023 MB" },
             { 1073741824, "1.0 GB" },
             { 1610612736, "1.5 GB" },
             { 5905580032, "5.5 GB" },
         }) {
        SCOPED_TRACE(c.bytes);
        EXPECT_EQ(VersionArchive::describe(c.bytes), c.text);
    }
}
