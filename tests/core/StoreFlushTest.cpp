// Each store writes its whole file once, a debounce after its last change; the clock here is moved by hand.

#include "core/FaviconStore.h"
#include "core/HistoryStore.h"
#include "core/ManualClock.h"
#include "core/Vault.h"
#include "support/ScopedStores.h"

#include "CoreTestSupport.h"

#include <filesystem>
#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;
using namespace std::chrono_literals;

namespace {

// A store on a manual clock, seen through its file.
struct Subject {
    std::shared_ptr<void> store;
    std::function<void(int)> change; // the n-th change, from 1
    std::function<int()> written; // the last change the file holds; 0 without a file
};

template<class Record> std::function<int()> written(const std::string& path, int (*count)(const Record&))
{
    return [path, count] {
        return fileExists(path) ? count(SecureJsonFile<Record>(path, testDataKey()).load(Record())) : 0;
    };
}

Subject vault(const std::string& path, Clock& clock)
{
    auto vault = std::make_shared<Vault>(path, testDataKey(), clock);
    return { vault, [vault](int n) { vault->update([n](VaultData& data) { data.currentZoomLevel = n; }); },
        written<VaultData>(path, [](const VaultData& data) { return static_cast<int>(data.currentZoomLevel); }) };
}

Subject history(const std::string& path, Clock& clock)
{
    auto history = std::make_shared<HistoryStore>(path, testDataKey(), clock);
    return { history, [history](int n) { history->record(numbered("https://", n) + ".example/", "", velder::now()); },
        written<HistoryData>(path, [](const HistoryData& data) { return static_cast<int>(data.entries.size()); }) };
}

Subject favicons(const std::string& path, Clock& clock)
{
    auto favicons = std::make_shared<FaviconStore>(path, testDataKey(), velder::now, clock);
    return { favicons, [favicons](int n) { favicons->store(pngSignature, numbered("s", n) + ".example"); },
        written<FaviconData>(path, [](const FaviconData& data) { return static_cast<int>(data.icons.size()); }) };
}

} // namespace

TEST(StoreFlush, ABurstOfChangesIsWrittenOnceTheDebounceAfterTheLast)
{
    struct Row {
        const char* name;
        std::chrono::milliseconds debounce;
        Subject (*open)(const std::string&, Clock&);
    };
    for (const Row& row : std::vector<Row> {
             { "vault", 2000ms, vault },
             { "history", 2000ms, history },
             { "favicons", 2500ms, favicons },
         }) {
        SCOPED_TRACE(row.name);
        ScopedStores stores; // the shared vault, which the history store asks for its limit
        ManualClock clock;
        std::string path = stores.profile().root().file("store.bin");
        Subject subject = row.open(path, clock);

        subject.change(1);
        clock.advance(row.debounce - 1ms);
        subject.change(2);
        clock.advance(row.debounce - 1ms);
        EXPECT_FALSE(fileExists(path)) << "the second change pushed the write back";
        clock.advance(1ms);
        EXPECT_EQ(subject.written(), 2);

        std::filesystem::remove(path);
        clock.advance(1h);
        EXPECT_FALSE(fileExists(path)) << "the burst cost one write";

        subject.change(3);
        clock.advance(row.debounce);
        EXPECT_EQ(subject.written(), 3) << "a later change is written in its turn";
    }
}
