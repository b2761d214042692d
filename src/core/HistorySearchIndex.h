#pragma once

#include "core/Date.h"
#include "core/HistoryEntry.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

namespace velder {

// What the address bar's suggestions scan on every keystroke, kept apart from the history's entries: one
// contiguous buffer of small records (the address and title as compared, with the ranking keys), so that a
// scan of 100000 entries reads memory front to back instead of chasing a pointer per entry. ASCII text is
// kept as it stands and folded while comparing; other text is kept lower-cased.
//
// Not thread-safe: the history store calls it under its lock.
class HistorySearchIndex {
public:
    using Handle = std::size_t; // where an entry's record starts

    struct Match {
        int rank; // 3: the address begins with the query; 2: the host does; 1: found anywhere, title included
        std::int64_t visitCount;
        Date lastVisitUtc;
        std::uint64_t sequence; // higher is nearer the front of the history
        std::uint32_t slot;
    };

    Handle add(std::uint32_t slot, const HistoryEntry& entry, std::uint64_t sequence);
    void remove(Handle handle);
    // A visit: new count, date and place.
    void touch(Handle handle, const HistoryEntry& entry, std::uint64_t sequence);
    void clear();
    // Rewrites the buffer without the records of removed entries once they take more room than the live
    // ones; `moved` learns each entry's new handle.
    void compactIfWasteful(const std::function<void(std::uint32_t slot, Handle handle)>& moved);

    // The best `limit` matches of a query that is already trimmed and lower-cased, best first: higher rank,
    // then more visits, then the later visit, then the nearer place.
    std::vector<Match> best(std::string_view foldedQuery, std::size_t limit) const;

    static bool comesBefore(const Match& a, const Match& b);

    std::size_t bytes() const { return m_buffer.size(); }

    struct Header;

private:
    std::vector<std::byte> m_buffer;
    std::size_t m_wasted = 0;
};

} // namespace velder
