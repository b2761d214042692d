#include "core/HistoryStore.h"

#include "core/AppInfo.h"
#include "core/FaviconStore.h"
#include "core/Text.h"
#include "core/Vault.h"

#include <algorithm>

namespace velder {

namespace {

std::mutex sharedMutex;
std::shared_ptr<HistoryStore> sharedStore; // guarded by sharedMutex

std::int64_t maxHistorySetting()
{
    return Vault::shared().snapshot()->settings.maxHistory;
}

// Compares a piece of text with the folded query. ASCII text is lower-cased byte by byte on the way;
// text that isn't ASCII comes already folded, and is compared as it stands.
struct FoldedText {
    std::string_view text;
    bool foldWhileComparing;

    bool matchesAt(size_t at, std::string_view query) const
    {
        if (text.size() - at < query.size()) {
            return false;
        }
        const char* p = text.data() + at;
        if (!foldWhileComparing) {
            return std::char_traits<char>::compare(p, query.data(), query.size()) == 0;
        }
        for (size_t i = 0; i < query.size(); ++i) {
            if (Text::asciiLower(p[i]) != query[i]) {
                return false;
            }
        }
        return true;
    }

    bool startsWith(std::string_view query, size_t from = 0) const
    {
        return from <= text.size() && matchesAt(from, query);
    }

    bool contains(std::string_view query) const
    {
        if (query.size() > text.size()) {
            return false;
        }
        if (!foldWhileComparing) {
            return text.find(query) != std::string_view::npos;
        }
        // Look for the first character in either case, then compare the rest.
        const char first = query[0];
        const char firstUpper = (first >= 'a' && first <= 'z') ? static_cast<char>(first - ('a' - 'A')) : first;
        const size_t last = text.size() - query.size();
        const char* data = text.data();
        for (size_t i = 0; i <= last; ++i) {
            char c = data[i];
            if ((c == first || c == firstUpper) && matchesAt(i + 1, query.substr(1))) {
                return true;
            }
        }
        return false;
    }
};

// A match of the suggestions, with the keys of its place in the list.
struct Match {
    int rank;
    std::int64_t visitCount;
    Date lastVisitUtc;
    std::size_t position; // in store order, newest first
    const HistoryEntry* entry;
};

// The stable order: higher rank, then more visits, then the later visit, then the newer position.
bool comesBefore(const Match& a, const Match& b)
{
    if (a.rank != b.rank) {
        return a.rank > b.rank;
    }
    if (a.visitCount != b.visitCount) {
        return a.visitCount > b.visitCount;
    }
    if (a.lastVisitUtc != b.lastVisitUtc) {
        return a.lastVisitUtc > b.lastVisitUtc;
    }
    return a.position < b.position;
}

} // namespace

HistoryStore& HistoryStore::shared()
{
    std::lock_guard lock(sharedMutex);
    if (!sharedStore) {
        sharedStore = std::make_shared<HistoryStore>(AppInfo::historyFile());
    }
    return *sharedStore;
}

void HistoryStore::setShared(std::shared_ptr<HistoryStore> store)
{
    std::lock_guard lock(sharedMutex);
    sharedStore = std::move(store);
}

HistoryStore::HistoryStore(std::string path, std::optional<SymmetricKey> key)
    : m_file(std::move(path), std::move(key))
    , m_flush("local.velder.history-flush", debounce, [this] { writeIfDirty(); })
{
    HistoryData data = m_file.load(HistoryData());
    std::int64_t limit = maxHistorySetting();
    std::lock_guard lock(m_lock);
    // The file lists the newest visit first; where an address repeats, the one nearest the front stays.
    std::vector<SlotIndex> newestFirst;
    newestFirst.reserve(data.entries.size());
    for (auto& entry : data.entries) {
        if (static_cast<std::int64_t>(newestFirst.size()) >= limit) {
            break;
        }
        if (m_index.contains(entry.url)) {
            continue;
        }
        newestFirst.push_back(allocate(std::move(entry)));
    }
    m_order.assign(newestFirst.rbegin(), newestFirst.rend());
}

void HistoryStore::fill(Slot& slot, HistoryEntry entry)
{
    slot.entry = std::move(entry);
    slot.asciiUrl = Text::isAscii(slot.entry.url);
    slot.foldedUrl = slot.asciiUrl ? std::string() : Text::lowercased(slot.entry.url);
    std::string_view folded = slot.asciiUrl ? std::string_view(slot.entry.url) : std::string_view(slot.foldedUrl);
    size_t start = folded.find("://");
    start = start == std::string_view::npos ? 0 : start + 3;
    if (Text::asciiStartsWithIgnoringCase(folded.substr(start), "www.")) {
        start += 4;
    }
    slot.hostOffset = static_cast<std::uint32_t>(start);
    setTitle(slot, std::move(slot.entry.title));
    slot.inUse = true;
}

void HistoryStore::setTitle(Slot& slot, std::string title)
{
    slot.entry.title = std::move(title);
    slot.asciiTitle = Text::isAscii(slot.entry.title);
    slot.foldedTitle = slot.asciiTitle ? std::string() : Text::lowercased(slot.entry.title);
}

HistoryStore::SlotIndex HistoryStore::allocate(HistoryEntry entry)
{
    SlotIndex index;
    if (!m_freeSlots.empty()) {
        index = m_freeSlots.back();
        m_freeSlots.pop_back();
    } else {
        index = static_cast<SlotIndex>(m_slots.size());
        m_slots.emplace_back();
    }
    Slot& slot = m_slots[index];
    fill(slot, std::move(entry));
    m_index.emplace(std::string_view(slot.entry.url), index);
    return index;
}

void HistoryStore::release(SlotIndex index)
{
    Slot& slot = m_slots[index];
    m_index.erase(std::string_view(slot.entry.url));
    slot = Slot();
    m_freeSlots.push_back(index);
}

void HistoryStore::removeAll()
{
    m_index.clear();
    m_order.clear();
    m_freeSlots.clear();
    m_slots.clear();
}

void HistoryStore::record(std::string_view url, std::string_view title, Date at)
{
    std::string_view address = Text::trimmed(url);
    if (address.empty() || address == "about:blank") {
        return;
    }
    // Read before taking the lock: the vault's lock and this one are never held together.
    std::int64_t limit = maxHistorySetting();
    {
        std::lock_guard lock(m_lock);
        if (limit < 1) {
            if (!m_order.empty()) {
                removeAll();
                m_isDirty = true;
            }
        } else {
            if (auto found = m_index.find(address); found != m_index.end()) {
                SlotIndex index = found->second;
                Slot& slot = m_slots[index];
                slot.entry.visitCount += 1;
                slot.entry.lastVisitUtc = at;
                if (!title.empty()) {
                    setTitle(slot, std::string(title));
                }
                // Revisits are mostly of recent pages, so the search from the newest end is short.
                auto position = std::find(m_order.rbegin(), m_order.rend(), index);
                m_order.erase(std::next(position).base());
                m_order.push_back(index);
            } else {
                m_order.push_back(allocate({ std::string(address), std::string(title), at, 1 }));
            }
            if (static_cast<std::int64_t>(m_order.size()) > limit) {
                auto excess = static_cast<std::ptrdiff_t>(m_order.size() - static_cast<size_t>(limit));
                for (auto it = m_order.begin(); it != m_order.begin() + excess; ++it) {
                    release(*it);
                }
                m_order.erase(m_order.begin(), m_order.begin() + excess);
            }
            m_isDirty = true;
        }
    }
    m_flush.schedule();
}

void HistoryStore::updateTitle(std::string_view title, std::string_view url)
{
    std::string_view address = Text::trimmed(url);
    if (address.empty() || title.empty()) {
        return;
    }
    {
        std::lock_guard lock(m_lock);
        auto found = m_index.find(address);
        if (found == m_index.end() || m_slots[found->second].entry.title == title) {
            return;
        }
        setTitle(m_slots[found->second], std::string(title));
        m_isDirty = true;
    }
    m_flush.schedule();
}

std::vector<HistoryEntry> HistoryStore::suggestions(std::string_view query, std::size_t limit) const
{
    std::string folded = Text::lowercased(Text::trimmed(query));
    if (folded.empty() || limit == 0) {
        return {};
    }
    // A short list is kept sorted as it goes, so most entries cost one comparison with its last;
    // a long one is sorted once at the end.
    const bool keepTopOnly = limit <= 64;
    std::vector<Match> matches;
    std::vector<HistoryEntry> result;

    std::lock_guard lock(m_lock);
    std::size_t position = 0;
    for (auto it = m_order.rbegin(); it != m_order.rend(); ++it, ++position) {
        const Slot& slot = m_slots[*it];
        FoldedText url { slot.asciiUrl ? std::string_view(slot.entry.url) : std::string_view(slot.foldedUrl),
            slot.asciiUrl };
        int rank;
        if (url.startsWith(folded)) {
            rank = 3;
        } else if (url.startsWith(folded, slot.hostOffset)) {
            rank = 2;
        } else if (url.contains(folded)
            || FoldedText { slot.asciiTitle ? std::string_view(slot.entry.title) : std::string_view(slot.foldedTitle),
                slot.asciiTitle }
                   .contains(folded)) {
            rank = 1;
        } else {
            continue;
        }
        Match match { rank, slot.entry.visitCount, slot.entry.lastVisitUtc, position, &slot.entry };
        if (!keepTopOnly) {
            matches.push_back(match);
            continue;
        }
        if (matches.size() == limit && !comesBefore(match, matches.back())) {
            continue;
        }
        matches.insert(std::upper_bound(matches.begin(), matches.end(), match, comesBefore), match);
        if (matches.size() > limit) {
            matches.pop_back();
        }
    }
    if (!keepTopOnly) {
        std::sort(matches.begin(), matches.end(), comesBefore); // positions make the order total
        if (matches.size() > limit) {
            matches.resize(limit);
        }
    }
    result.reserve(matches.size());
    for (const auto& match : matches) {
        result.push_back(*match.entry);
    }
    return result;
}

void HistoryStore::clear()
{
    // Clearing the history clears the icons too, also when there is no history.
    FaviconStore::shared().clear();
    {
        std::lock_guard lock(m_lock);
        if (m_order.empty()) {
            return;
        }
        removeAll();
        m_isDirty = true;
    }
    m_flush.schedule();
}

void HistoryStore::flushNow()
{
    m_flush.flushNow();
}

std::vector<HistoryEntry> HistoryStore::copyEntries() const
{
    std::vector<HistoryEntry> copy;
    copy.reserve(m_order.size());
    for (auto it = m_order.rbegin(); it != m_order.rend(); ++it) {
        copy.push_back(m_slots[*it].entry);
    }
    return copy;
}

std::vector<HistoryEntry> HistoryStore::entries() const
{
    std::lock_guard lock(m_lock);
    return copyEntries();
}

std::size_t HistoryStore::count() const
{
    std::lock_guard lock(m_lock);
    return m_order.size();
}

void HistoryStore::writeIfDirty()
{
    HistoryData data;
    {
        std::lock_guard lock(m_lock);
        if (!m_isDirty) {
            return;
        }
        data.entries = copyEntries();
        m_isDirty = false;
    }
    if (!m_file.save(data)) {
        std::lock_guard lock(m_lock);
        m_isDirty = true;
    }
}

} // namespace velder
