#pragma once

#include "core/DebouncedFlush.h"
#include "core/HistoryData.h"
#include "core/SecureJsonFile.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace velder {

// The visited addresses of ordinary windows, newest visit first, one entry per address, written to
// "history.bin" two seconds after the last change. The tab decides what is recorded (no internal pages,
// nothing from private windows); the store refuses only empty addresses and "about:blank".
//
// Thread safety: any thread; the file is written on "local.velder.history-flush" outside the lock.
class HistoryStore {
public:
    static constexpr std::chrono::milliseconds debounce { 2000 };

    static HistoryStore& shared(); // made on first use from AppInfo::historyFile()
    static void setShared(std::shared_ptr<HistoryStore> store); // tests

    // Loads the file, keeps the first entry of each address and trims to the vault's maxHistory.
    explicit HistoryStore(std::string path, std::optional<SymmetricKey> key = KeychainKey::shared());

    void record(std::string_view url, std::string_view title, Date at);
    void updateTitle(std::string_view title, std::string_view url);
    // Best first: a URL prefix, then a host prefix (without "www."), then anywhere in URL or title;
    // ties go to more visits, then the later visit, then store order.
    std::vector<HistoryEntry> suggestions(std::string_view query, std::size_t limit) const;
    // Empties the history, and the favicon store first of all.
    void clear();
    void flushNow();
    // A copy of the entries, newest visit first.
    std::vector<HistoryEntry> entries() const;
    std::size_t count() const;

private:
    // (private state is the implementer's)
};

} // namespace velder
