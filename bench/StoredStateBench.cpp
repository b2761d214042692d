// The sealed files' costs at the size of a full history, and the vault read that every paint makes.

#include "core/AesGcm.h"
#include "core/HistoryData.h"
#include "core/SecureJsonFile.h"
#include "core/Vault.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <filesystem>
#include <unistd.h>

using namespace velder;

namespace {

SymmetricKey benchKey()
{
    SymmetricKey key {};
    key[0] = 1;
    return key;
}

// About 160 bytes an entry, as a real history's addresses and titles run: ~16 MB for 100000.
HistoryData historyOf(std::size_t count)
{
    HistoryData data;
    data.entries.reserve(count);
    Date base = *parseIso8601("2026-11-20T08:00:00Z");
    for (std::size_t i = 0; i < count; ++i) {
        std::string n = std::to_string(i);
        data.entries.push_back(
            { "https://www.site" + std::to_string(i % 997) + ".example/a/" + n + "/path-of-page?id=" + n,
                "Article " + n + " \xe2\x80\x94 a title of a page", base - std::chrono::seconds(i * 37),
                static_cast<std::int64_t>(1 + i % 13) });
    }
    return data;
}

std::string benchFolder()
{
    std::string path = (std::filesystem::temp_directory_path() / "velder-bench-XXXXXX").string();
    return mkdtemp(path.data());
}

void BM_SealedFileLoad(benchmark::State& state)
{
    std::string folder = benchFolder();
    SecureJsonFile<HistoryData> file(folder + "/history.bin", benchKey());
    file.save(historyOf(static_cast<std::size_t>(state.range(0))));
    state.counters["bytes"] = static_cast<double>(std::filesystem::file_size(folder + "/history.bin"));
    for (auto _ : state) {
        HistoryData loaded = file.load(HistoryData());
        benchmark::DoNotOptimize(loaded.entries.data());
    }
    std::filesystem::remove_all(folder);
}
BENCHMARK(BM_SealedFileLoad)->Arg(100000)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

void BM_SealedFileSave(benchmark::State& state)
{
    std::string folder = benchFolder();
    SecureJsonFile<HistoryData> file(folder + "/history.bin", benchKey());
    HistoryData data = historyOf(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(file.save(data));
    }
    std::filesystem::remove_all(folder);
}
BENCHMARK(BM_SealedFileSave)->Arg(100000)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

void BM_VaultSnapshot(benchmark::State& state)
{
    std::string folder = benchFolder();
    Vault vault(folder + "/vault.bin", benchKey());
    vault.update([](VaultData& data) {
        for (int i = 0; i < 200; ++i) {
            data.locationSites["https://site" + std::to_string(i) + ".example"] = true;
            data.dashboardIgnored.push_back("ignored" + std::to_string(i) + ".example");
        }
    });
    for (auto _ : state) {
        auto snapshot = vault.snapshot();
        benchmark::DoNotOptimize(snapshot->settings.textColor.data());
    }
    std::filesystem::remove_all(folder);
}
BENCHMARK(BM_VaultSnapshot);

} // namespace
