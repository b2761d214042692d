#pragma once

#include "core/DebouncedFlush.h"
#include "core/HistoryData.h"
#include "core/HistorySearchIndex.h"
#include "core/SecureJsonFile.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
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
    // `flushClock` times the debounce (tests move a ManualClock); it must outlive the store.
    explicit HistoryStore(
        std::string path, std::optional<SymmetricKey> key = KeychainKey::shared(), Clock& flushClock = Clock::steady());

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
    // Calls `visit` with each entry, newest visit first, under the store's lock (so it must not call back
    // into the store, nor keep a reference). For readers that need a digest of the history rather than a
    // copy of it: the dashboard groups 100000 entries without copying each one.
    void forEachEntry(const std::function<void(const HistoryEntry&)>& visit) const;
    std::size_t count() const;

private:
    struct Slot {
        HistoryEntry entry;
        HistorySearchIndex::Handle record = 0; // the entry's record in m_search
        std::uint64_t sequence = 0; // of the last visit
        bool inUse = false;
    };
    using SlotIndex = std::uint32_t;

    SlotIndex allocate(HistoryEntry entry);
    void release(SlotIndex index);
    void setTitle(SlotIndex index, std::string title);
    void removeAll();
    void compactSearch();
    std::vector<HistoryEntry> copyEntries() const; // with m_lock held
    void writeIfDirty();

    SecureJsonFile<HistoryData> m_file;
    mutable std::mutex m_lock;
    // The entries live in slots that never move (a deque keeps addresses on growth), so the index can
    // point into them; m_order lists the slots oldest first, so a visit appends and a revisit moves 4 bytes
    // per newer entry, and no map is rebuilt. Each visit also takes the next sequence number, so that the
    // place in the list is known to the search without a position per entry.
    std::deque<Slot> m_slots; // guarded by m_lock
    std::vector<SlotIndex> m_freeSlots; // guarded by m_lock
    std::vector<SlotIndex> m_order; // guarded by m_lock; oldest visit first, newest last
    std::unordered_map<std::string_view, SlotIndex> m_index; // guarded by m_lock; url -> slot
    HistorySearchIndex m_search; // guarded by m_lock
    std::uint64_t m_nextSequence = 1; // guarded by m_lock
    bool m_isDirty = false; // guarded by m_lock
    DebouncedFlush m_flush; // last: its queue ends before the state above goes
};

} // namespace velder
