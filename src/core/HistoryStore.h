#pragma once

#include "core/DebouncedFlush.h"
#include "core/HistoryData.h"
#include "core/SecureJsonFile.h"

#include <chrono>
#include <cstdint>
#include <deque>
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
    // One entry with what the suggestions need prepared once, at record time rather than per keystroke.
    struct Slot {
        HistoryEntry entry;
        std::string foldedUrl; // the lower-cased url, only when it isn't ASCII (ASCII folds while comparing)
        std::string foldedTitle; // likewise for the title
        std::uint32_t hostOffset = 0; // where the url without "scheme://" and one "www." starts, folded
        bool asciiUrl = true;
        bool asciiTitle = true;
        bool inUse = false;
    };
    using SlotIndex = std::uint32_t;

    void fill(Slot& slot, HistoryEntry entry);
    void setTitle(Slot& slot, std::string title);
    SlotIndex allocate(HistoryEntry entry);
    void release(SlotIndex index);
    void removeAll();
    std::vector<HistoryEntry> copyEntries() const; // with m_lock held
    void writeIfDirty();

    SecureJsonFile<HistoryData> m_file;
    mutable std::mutex m_lock;
    // The entries live in slots that never move (a deque keeps addresses on growth), so the index can
    // point into them; m_order lists the slots oldest first, so a visit appends and a revisit moves 4 bytes
    // per newer entry, and no map is rebuilt.
    std::deque<Slot> m_slots; // guarded by m_lock
    std::vector<SlotIndex> m_freeSlots; // guarded by m_lock
    std::vector<SlotIndex> m_order; // guarded by m_lock; oldest visit first, newest last
    std::unordered_map<std::string_view, SlotIndex> m_index; // guarded by m_lock; url -> slot
    bool m_isDirty = false; // guarded by m_lock
    DebouncedFlush m_flush; // last: its queue ends before the state above goes
};

} // namespace velder
