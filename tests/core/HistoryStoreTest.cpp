#include "core/HistoryStore.h"

#include "core/AppInfo.h"
#include "core/Text.h"
#include "support/ScopedStores.h"

#include "CoreTestSupport.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <random>

using namespace velder;
using namespace velder::test;
using namespace std::chrono_literals;

namespace {

Date at(int seconds)
{
    return *parseIso8601("2026-11-20T08:00:00Z") + std::chrono::seconds(seconds);
}

std::vector<std::string> urls(const std::vector<HistoryEntry>& entries)
{
    std::vector<std::string> result;
    for (const auto& entry : entries) {
        result.push_back(entry.url);
    }
    return result;
}

class HistoryStoreTest : public testing::Test {
protected:
    ScopedStores stores;
};

} // namespace

TEST_F(HistoryStoreTest, RecordKeepsOneEntryPerAddressNewestFirst)
{
    auto& history = stores.history();
    history.record("https://example.com/", "Example", at(0));
    history.record(" https://example.com/ \n", "", at(10));
    history.record("https://EXAMPLE.com/", "", at(20));
    history.record("about:blank", "", at(30));
    history.record("about:blank ", "", at(30));
    history.record("  \n", "", at(30));
    history.record("ABOUT:BLANK", "", at(40));

    auto entries = history.entries();
    EXPECT_EQ(
        urls(entries), (std::vector<std::string> { "ABOUT:BLANK", "https://EXAMPLE.com/", "https://example.com/" }));
    EXPECT_EQ(entries[2], (HistoryEntry { "https://example.com/", "Example", at(10), 2 }))
        << "the padded address is the same entry, and an empty title keeps the old one";
}

// The model test below keeps its limit fixed; a lowered limit takes effect at the next visit.
TEST_F(HistoryStoreTest, ALoweredLimitTakesEffectAtTheNextVisit)
{
    auto& history = stores.history();
    for (int i = 0; i < 3; ++i) {
        history.record(numbered("https://", i) + ".example/", "", at(i));
    }
    stores.setSettings([](AppSettings& s) { s.maxHistory = 1; });
    EXPECT_EQ(history.count(), 3u);
    history.record("https://1.example/", "", at(12));
    EXPECT_EQ(urls(history.entries()), std::vector<std::string> { "https://1.example/" });
}

TEST_F(HistoryStoreTest, AZeroLimitSwitchesHistoryOff)
{
    std::string file = AppInfo::historyFile();
    stores.setSettings([](AppSettings& s) { s.maxHistory = 0; });
    stores.history().record("https://a.example/", "", at(0));
    stores.history().flushNow();
    EXPECT_EQ(stores.history().count(), 0u);
    EXPECT_FALSE(fileExists(file)) << "nothing was dirty, so nothing was written";

    stores.setSettings([](AppSettings& s) { s.maxHistory = 10; });
    stores.history().record("https://a.example/", "", at(0));
    stores.history().flushNow();
    ASSERT_TRUE(fileExists(file));
    stores.setSettings([](AppSettings& s) { s.maxHistory = 0; });
    stores.history().record("https://b.example/", "", at(1));
    EXPECT_EQ(stores.history().count(), 0u);
    stores.reloadHistory();
    EXPECT_EQ(stores.history().count(), 0u) << "emptying the history is written";
}

TEST_F(HistoryStoreTest, UpdateTitleChangesOnlyTheTitle)
{
    auto& history = stores.history();
    history.record("https://a.example/", "A", at(0));
    history.record("https://b.example/", "", at(1));
    history.flushNow();
    std::filesystem::remove(AppInfo::historyFile());

    history.updateTitle("A", "https://a.example/"); // the same title
    history.updateTitle("", "https://a.example/");
    history.updateTitle("Nobody", "https://c.example/");
    history.updateTitle("Nobody", "  ");
    history.flushNow();
    EXPECT_FALSE(fileExists(AppInfo::historyFile())) << "none of these changed anything";

    history.updateTitle(" New A ", " https://a.example/\n");
    history.flushNow();
    EXPECT_TRUE(fileExists(AppInfo::historyFile()));
    EXPECT_EQ(history.entries()[1].title, " New A ") << "the address is trimmed, the title is not";
}

TEST_F(HistoryStoreTest, SuggestionTiers)
{
    struct Case {
        const char* query;
        const char* url;
        const char* title;
        int rank; // 0: no match
    };
    const std::vector<Case> cases {
        { "http", "https://example.com/", "", 3 }, { "exa", "https://www.example.com/", "", 2 },
        { "www.exa", "https://www.example.com/", "", 1 }, { "ample", "https://example.com/", "", 1 },
        { "news", "https://example.com/", "Daily News", 1 }, { "EXA", "https://example.com/", "", 2 },
        { "  exa\n", "https://Example.com/", "", 2 },
        { "ftp", "ftp.example/x", "", 3 }, // without "://" the whole address is the host part
        { "example.org", "https://example.com/", "", 0 },
        { "\xC3\x9CN\xC3\x8F", "https://c.example/",
            "\xC3\x9Cn\xC3\xAF"
            "code",
            1 }, // ÜNÏ matches Ünïcode
        { "\xC3\xBC", "https://c.example/\xC3\x9C", "", 1 }, // ü matches Ü in the address
        { "k", "https://x.example/\xE2\x84\xAA", "", 1 }, // the Kelvin sign lower-cases to k
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.query) + " in " + c.url);
        ScopedStores stores;
        // Older decoys of rank 3, 2 and 1: on equal rank the entry's later visit puts it first, so its
        // place among them tells its rank.
        std::string query(Text::trimmed(c.query));
        stores.history().record(query + "://decoy3", "", at(0));
        stores.history().record("zz://www." + query + "/decoy2", "", at(1));
        stores.history().record("zz://decoy1/" + query, "", at(2));
        stores.history().record(c.url, c.title, at(10));
        auto found = urls(stores.history().suggestions(c.query, 8));
        auto place = std::find(found.begin(), found.end(), c.url);
        if (c.rank == 0) {
            EXPECT_EQ(place, found.end());
            continue;
        }
        ASSERT_NE(place, found.end());
        EXPECT_EQ(place - found.begin(), 3 - c.rank);
        EXPECT_EQ(found.size(), 4u);
    }

    // The ranks themselves show in the order: more visits can't lift an entry over a higher rank.
    ScopedStores stores;
    auto& history = stores.history();
    history.record("https://news.example/exa", "", at(0)); // rank 1 for "exa"
    for (int i = 0; i < 5; ++i) {
        history.record("https://www.exa.example/", "", at(1)); // rank 2, five visits
    }
    history.record("exa://thing", "", at(2)); // rank 3
    history.record("https://title.example/", "EXAmple title", at(3)); // rank 1 by title
    EXPECT_EQ(urls(history.suggestions("exa", 8)),
        (std::vector<std::string> {
            "exa://thing", "https://www.exa.example/", "https://title.example/", "https://news.example/exa" }));
    EXPECT_TRUE(history.suggestions("   ", 8).empty());
    EXPECT_TRUE(history.suggestions("exa", 0).empty());
}

// The search compares eight bytes at a time: the query must be found at any offset and in any case,
// and the bytes that fold onto a letter's neighbours ("@" and "`" around "a") must not fool it.
TEST_F(HistoryStoreTest, ContainsFindsTheQueryAtEveryOffset)
{
    for (size_t offset = 0; offset < 20; ++offset) {
        SCOPED_TRACE(offset);
        ScopedStores stores;
        std::string padding(offset, '@');
        stores.history().record("zz://" + padding + "XAmPle@AMPL`", "", at(0));
        stores.history().record("zz://" + padding + "xamp" + std::string(9, 'a'), "", at(1));
        EXPECT_EQ(urls(stores.history().suggestions("ample", 8)),
            std::vector<std::string> { "zz://" + padding + "XAmPle@AMPL`" });
        EXPECT_EQ(stores.history().suggestions("ampl`", 8).size(), 1u);
        EXPECT_EQ(stores.history().suggestions("aaaaaaaaa", 8).size(), 1u);
        EXPECT_TRUE(stores.history().suggestions("ampla", 8).empty());
        EXPECT_TRUE(stores.history().suggestions("`", 8).size() == 1u);
    }
}

TEST_F(HistoryStoreTest, SuggestionTiesGoToVisitsThenDateThenStoreOrder)
{
    auto& history = stores.history();
    history.record("https://a.example/1", "", at(100)); // later visit, older position
    history.record("https://a.example/2", "", at(50));
    history.record("https://a.example/3", "", at(50)); // same date as 2, newer position
    history.record("https://a.example/4", "", at(10));
    history.record("https://a.example/4", "", at(10)); // two visits
    EXPECT_EQ(urls(history.suggestions("https://a.example/", 8)),
        (std::vector<std::string> {
            "https://a.example/4", "https://a.example/1", "https://a.example/3", "https://a.example/2" }));
    EXPECT_EQ(urls(history.suggestions("a.example", 2)),
        (std::vector<std::string> { "https://a.example/4", "https://a.example/1" }));
}

TEST_F(HistoryStoreTest, WholeSecondDatesInAReloadedFileFallBackToStoreOrder)
{
    Date base = at(0);
    stores.history().record("https://a.example/old", "", base + 300ms);
    stores.history().record("https://a.example/new", "", base + 100ms); // newer position, earlier date
    EXPECT_EQ(urls(stores.history().suggestions("a.example", 8)),
        (std::vector<std::string> { "https://a.example/old", "https://a.example/new" }));
    stores.reloadHistory();
    EXPECT_EQ(urls(stores.history().suggestions("a.example", 8)),
        (std::vector<std::string> { "https://a.example/new", "https://a.example/old" }));
}

TEST_F(HistoryStoreTest, ClearEmptiesHistoryAndIconsEvenWhenEmpty)
{
    ASSERT_TRUE(stores.favicons().store(pngSignature, "a.example"));
    stores.history().clear();
    stores.history().flushNow();
    EXPECT_EQ(stores.favicons().count(), 0u);
    EXPECT_FALSE(fileExists(AppInfo::historyFile())) << "clearing an empty history writes nothing";

    stores.history().record("https://a.example/", "", at(0));
    stores.history().clear();
    EXPECT_EQ(stores.history().count(), 0u);
    stores.reloadHistory();
    EXPECT_EQ(stores.history().count(), 0u);
}

TEST_F(HistoryStoreTest, LoadKeepsTheFirstOfEachAddressAndTrimsWithoutWriting)
{
    HistoryData stored { {
        { "https://a.example/", "A new", at(9), 2 },
        { "https://b.example/", "B", at(8), 1 },
        { "https://a.example/", "A old", at(1), 9 },
        { "https://c.example/", "C", at(7), 1 },
        { "https://d.example/", "D", at(6), 1 },
    } };
    SecureJsonFile<HistoryData> file(AppInfo::historyFile(), testDataKey());
    ASSERT_TRUE(file.save(stored));
    stores.setSettings([](AppSettings& s) { s.maxHistory = 3; });

    HistoryStore history(AppInfo::historyFile(), testDataKey());
    EXPECT_EQ(
        history.entries(), (std::vector<HistoryEntry> { stored.entries[0], stored.entries[1], stored.entries[3] }));
    history.flushNow();
    EXPECT_EQ(file.load(HistoryData()), stored) << "the trim reaches the file with the next change only";
    history.record("https://b.example/", "", at(10));
    history.flushNow();
    EXPECT_EQ(urls(file.load(HistoryData()).entries),
        (std::vector<std::string> { "https://b.example/", "https://a.example/", "https://c.example/" }));
}

// Random visits, titles and clears against a plain list: the index and the order must agree with it.
TEST_F(HistoryStoreTest, AgreesWithAPlainListUnderRandomOperations)
{
    stores.setSettings([](AppSettings& s) { s.maxHistory = 40; });
    std::vector<HistoryEntry> model; // newest first
    std::mt19937 random(7);
    for (int step = 0; step < 4000; ++step) {
        std::string url = numbered("https://s", random() % 60) + ".example/";
        int what = static_cast<int>(random() % 100);
        if (what < 80) {
            std::string title = random() % 3 == 0 ? numbered("t", step) : "";
            stores.history().record(url, title, at(step));
            auto found = std::find_if(model.begin(), model.end(), [&](auto& e) { return e.url == url; });
            HistoryEntry entry { url, title, at(step), 1 };
            if (found != model.end()) {
                entry = *found;
                entry.visitCount += 1;
                entry.lastVisitUtc = at(step);
                if (!title.empty()) {
                    entry.title = title;
                }
                model.erase(found);
            }
            model.insert(model.begin(), entry);
            if (model.size() > 40) {
                model.resize(40);
            }
        } else if (what < 98) {
            std::string title = numbered("u", step);
            stores.history().updateTitle(title, url);
            for (auto& e : model) {
                if (e.url == url) {
                    e.title = title;
                }
            }
        } else {
            stores.history().clear();
            model.clear();
        }
        if (step % 97 == 0) {
            ASSERT_EQ(stores.history().entries(), model) << "at step " << step;
            // The search sees exactly the live entries, whichever way it selects.
            std::string query = numbered("s", static_cast<long long>(random() % 6));
            auto all = stores.history().suggestions(query, 1000);
            std::vector<std::string> expected;
            for (const auto& e : model) {
                if (e.url.find(query) != std::string::npos) {
                    expected.push_back(e.url);
                }
            }
            auto found = urls(all);
            std::sort(found.begin(), found.end());
            std::sort(expected.begin(), expected.end());
            ASSERT_EQ(found, expected) << "at step " << step;
            auto top = stores.history().suggestions(query, 8);
            ASSERT_EQ(top, std::vector<HistoryEntry>(all.begin(), all.begin() + std::min<size_t>(8, all.size())));
        }
    }
    EXPECT_EQ(stores.history().entries(), model);
}

// A tampered history starts fresh, and is kept aside with its bytes intact when the fresh one is first written.
TEST_F(HistoryStoreTest, ATamperedFileIsKeptAsideNotReplaced)
{
    std::vector<std::uint8_t> tampered(64, 0x5a);
    writeBytes(AppInfo::historyFile(), tampered);
    stores.reloadHistory();
    EXPECT_EQ(stores.history().count(), 0u);
    stores.history().record("https://after.example/", "", at(0));
    stores.history().flushNow();

    std::vector<std::vector<std::uint8_t>> kept;
    auto folder = std::filesystem::path(AppInfo::historyFile()).parent_path();
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().filename().string().starts_with("history.bin.unreadable-")) {
            kept.push_back(readBytes(entry.path().string()));
        }
    }
    EXPECT_EQ(kept, std::vector<std::vector<std::uint8_t>> { tampered });
    stores.reloadHistory();
    EXPECT_EQ(urls(stores.history().entries()), std::vector<std::string> { "https://after.example/" });
}
