#include "core/VersionArchive.h"

#include "core/AppInfo.h"
#include "core/Log.h"
#include "support/ScopedStores.h"

#include <filesystem>
#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;
namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

std::string place(
    const std::string& path, std::uintmax_t size, fs::file_time_type modified = fs::file_time_type::clock::now())
{
    fs::create_directories(fs::path(path).parent_path());
    writeBytes(path, {});
    fs::resize_file(path, size);
    fs::last_write_time(path, modified);
    return path;
}

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

TEST_F(VersionArchiveTest, TheUpdaterCachesAreUnderTheCacheFolder)
{
    EXPECT_EQ(VersionArchive::updaterCaches(),
        (std::vector<std::string> { stores.profile().root().path() + "/cache/Velder/updater/PersistentDownloads",
            stores.profile().root().path() + "/cache/Velder/updater/Installation" }));
}

TEST_F(VersionArchiveTest, APayloadIsTheNewestFileAboveOneMebibyte)
{
    auto now = fs::file_time_type::clock::now();
    place(downloads("exactly.bin"), 1048576, now);
    EXPECT_EQ(VersionArchive::newestStagedPayload(), std::nullopt);
    std::string older = place(downloads("deep/down/.hidden.tar.xz"), 1048577, now - 60s);
    EXPECT_EQ(VersionArchive::newestStagedPayload(), older) << "hidden files and any depth count";
    std::string newer = place(downloads("a/new.tar.xz"), 2000000, now - 10s);
    place(installation("newest.tar.xz"), 5000000, now);
    EXPECT_EQ(VersionArchive::newestStagedPayload(), newer) << "downloads beat a newer file being installed";
    fs::remove_all(AppInfo::updaterCacheDirectory() + "/PersistentDownloads");
    EXPECT_EQ(VersionArchive::newestStagedPayload(), installation("newest.tar.xz"));
}

TEST_F(VersionArchiveTest, Capture)
{
    LogCapture log;
    EXPECT_FALSE(VersionArchive::capture()) << "nothing staged";
    place(downloads("Velder-2.0.tar.xz"), 1048577);
    EXPECT_TRUE(VersionArchive::capture());
    EXPECT_FALSE(VersionArchive::capture()) << "the same file is archived already";
    place(downloads("Velder-2.0.tar.xz"), 1048600);
    EXPECT_TRUE(VersionArchive::capture()) << "a same-named file of another size replaces the copy";
    EXPECT_EQ(fs::file_size(AppInfo::archiveDirectory() + "/Velder-2.0.tar.xz"), 1048600u);
    EXPECT_EQ(log.lines(),
        (std::vector<std::string> { "Velder: archived Velder-2.0.tar.xz", "Velder: archived Velder-2.0.tar.xz" }));

    stores.setSettings([](AppSettings& s) { s.archiveOldVersions = false; });
    place(downloads("Velder-3.0.tar.xz"), 1048577, fs::file_time_type::clock::now() + 1s);
    EXPECT_FALSE(VersionArchive::capture()) << "archiving is off";
    EXPECT_FALSE(fileExists(AppInfo::archiveDirectory() + "/Velder-3.0.tar.xz"));
}

TEST_F(VersionArchiveTest, AFailedCaptureSaysWhy)
{
    place(downloads("Velder-2.0.tar.xz"), 1048577);
    fs::create_directories(AppInfo::cacheDirectory());
    writeBytes(AppInfo::archiveDirectory(), { 1 }); // a file where the folder should be
    LogCapture log;
    EXPECT_FALSE(VersionArchive::capture());
    auto lines = log.lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_TRUE(lines[0].starts_with("Velder: could not archive the staged payload \xE2\x80\x94 ")) << lines[0];
    EXPECT_GT(lines[0].size(), std::string("Velder: could not archive the staged payload \xE2\x80\x94 ").size());
}

TEST_F(VersionArchiveTest, ContentsAndPurge)
{
    EXPECT_EQ(VersionArchive::contents(), (VersionArchive::Contents { 0, 0 })) << "no folder";
    std::string archive = AppInfo::archiveDirectory();
    place(archive + "/a.tar.xz", 1000);
    place(archive + "/b.tar.xz", 2500);
    place(archive + "/.hidden", 7777);
    place(archive + "/folder/inside.tar.xz", 9999);
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
