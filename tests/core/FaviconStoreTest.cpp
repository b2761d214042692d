#include "core/FaviconStore.h"

#include "core/AppInfo.h"
#include "core/Log.h"
#include "support/ScopedStores.h"

#include "CoreTestSupport.h"

#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;
using namespace std::chrono_literals;

namespace {

using Bytes = std::vector<std::uint8_t>;

const Bytes& png = pngSignature;

// The dates of fetches, moved by the test.
struct DateClock {
    std::shared_ptr<Date> time = std::make_shared<Date>(*parseIso8601("2026-11-20T08:00:00Z"));
    std::function<Date()> function() const
    {
        return [time = time] { return *time; };
    }
    void advance(std::chrono::seconds by) { *time += by; }
};

} // namespace

TEST(FaviconStore, SniffLooksAtTheBytesOnly)
{
    struct Case {
        const char* name;
        Bytes bytes;
        std::optional<std::string> mime;
    };
    Bytes webp { 'R', 'I', 'F', 'F', 1, 2, 3, 4, 'W', 'E', 'B', 'P' };
    for (const Case& c : std::vector<Case> {
             { "png", png, "image/png" },
             { "png cut to 7 bytes", Bytes(png.begin(), png.begin() + 7), std::nullopt },
             { "ico", { 0, 0, 1, 0 }, "image/x-icon" },
             { "ico cut", { 0, 0, 1 }, std::nullopt },
             { "cursor, not an icon", { 0, 0, 2, 0 }, std::nullopt },
             { "jpeg of 3 bytes", { 0xFF, 0xD8, 0xFF }, "image/jpeg" },
             { "GIF of 3 bytes", { 'G', 'I', 'F' }, std::nullopt },
             { "gif", { 'G', 'I', 'F', '8', '9', 'a' }, "image/gif" },
             { "webp", webp, "image/webp" },
             { "webp cut", Bytes(webp.begin(), webp.begin() + 11), std::nullopt },
             { "RIFF that is a wave", { 'R', 'I', 'F', 'F', 1, 2, 3, 4, 'W', 'A', 'V', 'E' }, std::nullopt },
             { "bmp of 2 bytes", { 'B', 'M' }, "image/bmp" },
             { "one byte", { 'B' }, std::nullopt },
             { "nothing", {}, std::nullopt },
             { "svg", { '<', 's', 'v', 'g', ' ', 'x', 'm', 'l', 'n', 's', '=', '"' }, std::nullopt },
             { "html", { '<', '!', 'd', 'o', 'c' }, std::nullopt },
         }) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(FaviconStore::sniff(c.bytes), c.mime);
    }
}

TEST(FaviconStore, StoreRefusesWhatIsNoIcon)
{
    ScopedStores stores;
    auto& favicons = stores.favicons();
    Bytes exactly(65536, 0);
    exactly[0] = 'B';
    exactly[1] = 'M';
    Bytes tooMany = exactly;
    tooMany.push_back(0);

    EXPECT_FALSE(favicons.store(png, ""));
    EXPECT_FALSE(favicons.store({}, "a.example"));
    EXPECT_FALSE(favicons.store(tooMany, "a.example"));
    EXPECT_FALSE(favicons.store(Bytes { '<', 's', 'v', 'g' }, "a.example"));
    EXPECT_EQ(favicons.count(), 0u);
    EXPECT_TRUE(favicons.store(exactly, "a.example"));
    EXPECT_TRUE(favicons.store(png, "b.example"));
    EXPECT_EQ(favicons.dataUri("b.example"), "data:image/png;base64,iVBORw0KGgo=");
    EXPECT_EQ(favicons.dataUri("a.example")->substr(0, 27), "data:image/bmp;base64,Qk0AA");
    EXPECT_EQ(favicons.dataUri("c.example"), std::nullopt);
    EXPECT_EQ(favicons.dataUri("B.EXAMPLE"), std::nullopt) << "site keys arrive lower-cased; lookups are exact";
}

TEST(FaviconStore, AnIconIsStaleAfterFourteenDaysToTheSecond)
{
    DateClock clock;
    ScopedStores stores(clock.function());
    auto& favicons = stores.favicons();
    EXPECT_TRUE(favicons.needs("a.example"));
    ASSERT_TRUE(favicons.store(png, "a.example"));
    EXPECT_FALSE(favicons.needs("a.example"));
    clock.advance(1209600s);
    EXPECT_FALSE(favicons.needs("a.example")) << "14 days old to the second is fresh";
    clock.advance(1s);
    EXPECT_TRUE(favicons.needs("a.example"));
    EXPECT_TRUE(favicons.dataUri("a.example").has_value()) << "a stale icon is still shown";
    ASSERT_TRUE(favicons.store(Bytes { 'B', 'M' }, "a.example"));
    EXPECT_FALSE(favicons.needs("a.example"));
    EXPECT_EQ(favicons.entry("a.example")->mime, "image/bmp");
}

TEST(FaviconStore, The201stSiteEvictsTheOldest)
{
    DateClock clock;
    ScopedStores stores(clock.function());
    auto& favicons = stores.favicons();
    // Stored in an order unlike their age: site 150 is the oldest.
    for (int i = 0; i < 200; ++i) {
        int site = (i + 150) % 200;
        ASSERT_TRUE(favicons.store(png, numbered("s", site) + ".example"));
        clock.advance(1s);
    }
    EXPECT_EQ(favicons.count(), 200u);
    ASSERT_TRUE(favicons.store(png, "s150.example")); // a refresh replaces, it doesn't add
    EXPECT_EQ(favicons.count(), 200u);
    clock.advance(1s);
    ASSERT_TRUE(favicons.store(png, "new.example"));
    EXPECT_EQ(favicons.count(), 200u);
    EXPECT_FALSE(favicons.entry("s151.example")) << "now the oldest";
    EXPECT_TRUE(favicons.entry("s150.example"));
    EXPECT_TRUE(favicons.entry("new.example"));
}

TEST(FaviconStore, ClearIsWrittenButClearingNothingIsNot)
{
    ScopedStores stores;
    auto& favicons = stores.favicons();
    favicons.clear();
    favicons.flushNow();
    EXPECT_FALSE(fileExists(AppInfo::faviconFile())) << "clearing an empty store writes nothing";

    ASSERT_TRUE(favicons.store(png, "a.example"));
    favicons.flushNow();
    ASSERT_EQ(FaviconStore(AppInfo::faviconFile(), testDataKey()).count(), 1u);
    favicons.clear();
    favicons.flushNow();
    FaviconStore reloaded(AppInfo::faviconFile(), testDataKey());
    EXPECT_EQ(reloaded.count(), 0u);
}

// The empty entries a load drops are in the shared stored file (StoredInteropTest).
TEST(FaviconStore, LoadTrimsToTwoHundredWithoutWriting)
{
    TempDir dir;
    FaviconData stored;
    Date base = *parseIso8601("2026-01-01T00:00:00Z");
    for (int i = 0; i < 203; ++i) {
        stored.icons[numbered("s", i)] = { "image/png", "iVBORw0KGgo=", base + std::chrono::seconds(i) };
    }
    SecureJsonFile<FaviconData> file(dir.file("favicons.bin"), testDataKey());
    ASSERT_TRUE(file.save(stored));

    FaviconStore favicons(dir.file("favicons.bin"), testDataKey());
    EXPECT_EQ(favicons.count(), 200u);
    EXPECT_FALSE(favicons.entry("s2"));
    EXPECT_TRUE(favicons.entry("s3"));
    favicons.flushNow();
    EXPECT_EQ(file.load(FaviconData()).icons.size(), 203u) << "the cleanup isn't written by itself";
}
