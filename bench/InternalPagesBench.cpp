// The history's hot paths at full size, and the internal pages as the user opens them.

#include "core/DashboardPage.h"
#include "core/FaviconStore.h"
#include "core/HistoryPage.h"
#include "core/HistoryStore.h"
#include "core/SettingsPage.h"
#include "core/TopSites.h"
#include "core/Vault.h"

#include <benchmark/benchmark.h>
#include <filesystem>
#include <random>

using namespace velder;

namespace {

// Shared stores that live in memory only (no key, so nothing is written), with a history of `count`
// entries spread over about a thousand sites, about 160 bytes an entry as real addresses and titles run.
class BenchStores {
public:
    explicit BenchStores(std::size_t count)
    {
        std::string folder = (std::filesystem::temp_directory_path() / "velder-bench-none").string();
        auto vault = std::make_shared<Vault>(folder + "/vault.bin", std::nullopt);
        vault->update([](VaultData& data) { data.settings.maxHistory = AppSettings::maxHistoryLimit; });
        Vault::setShared(vault);
        FaviconStore::setShared(std::make_shared<FaviconStore>(folder + "/favicons.bin", std::nullopt));
        history = std::make_shared<HistoryStore>(folder + "/history.bin", std::nullopt);
        HistoryStore::setShared(history);
        Date start = velder::now() - std::chrono::hours(24 * 60);
        for (std::size_t i = 0; i < count; ++i) {
            history->record(url(i), title(i), start + std::chrono::seconds(i * 50));
        }
    }
    ~BenchStores()
    {
        HistoryStore::setShared(nullptr);
        FaviconStore::setShared(nullptr);
        Vault::setShared(nullptr);
    }

    static std::string url(std::size_t i)
    {
        std::string n = std::to_string(i);
        return "https://www.site" + std::to_string(i % 997) + ".example/a/" + n + "/path-of-page?id=" + n;
    }
    static std::string title(std::size_t i)
    {
        return "Article " + std::to_string(i) + " \xe2\x80\x94 a title of a page";
    }

    std::shared_ptr<HistoryStore> history;
};

void BM_Suggestions(benchmark::State& state)
{
    BenchStores stores(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        auto found = stores.history->suggestions("exa", 8);
        benchmark::DoNotOptimize(found.data());
    }
}
BENCHMARK(BM_Suggestions)->Arg(100000)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

// A query that matches nothing walks every address and every title to the end.
void BM_SuggestionsNoMatch(benchmark::State& state)
{
    BenchStores stores(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        auto found = stores.history->suggestions("zqx", 8);
        benchmark::DoNotOptimize(found.data());
    }
}
BENCHMARK(BM_SuggestionsNoMatch)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

// A visit to a new address on a full store: a new slot, the oldest entry dropped, both index changes.
void BM_HistoryRecord(benchmark::State& state)
{
    auto count = static_cast<std::size_t>(state.range(0));
    BenchStores stores(count);
    std::size_t next = count;
    Date when = velder::now();
    for (auto _ : state) {
        stores.history->record(BenchStores::url(next++), "", when);
    }
    state.counters["entries"] = static_cast<double>(stores.history->count());
}
BENCHMARK(BM_HistoryRecord)->Arg(100000)->Unit(benchmark::kMicrosecond)->Repetitions(5)->ReportAggregatesOnly(true);

// A revisit of an address anywhere in the store, moved to the front.
void BM_HistoryRevisit(benchmark::State& state)
{
    auto count = static_cast<std::size_t>(state.range(0));
    BenchStores stores(count);
    std::mt19937 random(1);
    Date when = velder::now();
    for (auto _ : state) {
        stores.history->record(BenchStores::url(random() % count), "", when);
    }
}
BENCHMARK(BM_HistoryRevisit)->Arg(100000)->Unit(benchmark::kMicrosecond)->Repetitions(5)->ReportAggregatesOnly(true);

void BM_TopSitesCurrent(benchmark::State& state)
{
    BenchStores stores(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        auto tiles = TopSites::current();
        benchmark::DoNotOptimize(tiles.data());
    }
}
BENCHMARK(BM_TopSitesCurrent)
    ->Arg(5000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

void BM_DashboardRender(benchmark::State& state)
{
    BenchStores stores(static_cast<std::size_t>(state.range(0)));
    const std::vector<std::uint8_t> png { 0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A };
    for (int i = 0; i < 12; ++i) {
        FaviconStore::shared().store(png, "site" + std::to_string(996 - i) + ".example");
    }
    for (auto _ : state) {
        std::string page = DashboardPage::render();
        benchmark::DoNotOptimize(page.data());
    }
}
BENCHMARK(BM_DashboardRender)->Arg(5000)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

void BM_SettingsRender(benchmark::State& state)
{
    BenchStores stores(0);
    for (auto _ : state) {
        std::string page = SettingsPage::render(SettingsPage::Notice::saved(), false);
        benchmark::DoNotOptimize(page.data());
    }
}
BENCHMARK(BM_SettingsRender)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

void BM_HistoryPageRender(benchmark::State& state)
{
    BenchStores stores(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        std::string page = HistoryPage::render();
        benchmark::DoNotOptimize(page.data());
    }
    state.counters["bytes"] = static_cast<double>(HistoryPage::render().size());
}
BENCHMARK(BM_HistoryPageRender)->Arg(5000)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

} // namespace
