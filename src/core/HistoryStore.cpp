#include "core/HistoryStore.h"

#include "core/AppInfo.h"
#include "core/FaviconStore.h"
#include "core/SharedInstance.h"
#include "core/Text.h"
#include "core/Vault.h"

#include <algorithm>
#include <unordered_set>

namespace velder {

namespace {

using Shared = SharedInstance<HistoryStore, AppInfo::historyFile>;

std::int64_t maxHistorySetting()
{
    return Vault::shared().snapshot()->settings.maxHistory;
}

} // namespace

HistoryStore& HistoryStore::shared()
{
    return Shared::get();
}

void HistoryStore::setShared(std::shared_ptr<HistoryStore> store)
{
    Shared::set(std::move(store));
}

HistoryStore::HistoryStore(std::string path, std::optional<SymmetricKey> key, Clock& flushClock)
    : m_file(std::move(path), std::move(key))
    , m_flush(
          "local.velder.history-flush", debounce, [this] { writeIfDirty(); }, flushClock)
{
    HistoryData data = m_file.load(HistoryData());
    std::int64_t limit = maxHistorySetting();
    // The file lists the newest visit first; where an address repeats, the one nearest the front stays.
    std::vector<HistoryEntry*> kept;
    std::unordered_set<std::string_view> seen;
    for (auto& entry : data.entries) {
        if (static_cast<std::int64_t>(kept.size()) >= limit) {
            break;
        }
        if (seen.insert(entry.url).second) {
            kept.push_back(&entry);
        }
    }
    seen.clear();
    std::lock_guard lock(m_lock);
    // Oldest first, so that the sequence numbers grow towards the front.
    m_order.reserve(kept.size());
    m_index.reserve(kept.size());
    for (auto it = kept.rbegin(); it != kept.rend(); ++it) {
        m_order.push_back(allocate(std::move(**it)));
    }
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
    slot.entry = std::move(entry);
    slot.inUse = true;
    slot.sequence = m_nextSequence++;
    slot.record = m_search.add(index, slot.entry, slot.sequence);
    m_index.emplace(std::string_view(slot.entry.url), index);
    return index;
}

void HistoryStore::release(SlotIndex index)
{
    Slot& slot = m_slots[index];
    m_index.erase(std::string_view(slot.entry.url));
    m_search.remove(slot.record);
    slot = Slot();
    m_freeSlots.push_back(index);
}

void HistoryStore::setTitle(SlotIndex index, std::string title)
{
    Slot& slot = m_slots[index];
    slot.entry.title = std::move(title);
    // The search keeps the title's text in the entry's record, so the record is written anew.
    m_search.remove(slot.record);
    slot.record = m_search.add(index, slot.entry, slot.sequence);
}

void HistoryStore::removeAll()
{
    m_index.clear();
    m_order.clear();
    m_freeSlots.clear();
    m_slots.clear();
    m_search.clear();
}

void HistoryStore::compactSearch()
{
    m_search.compactIfWasteful(
        [this](std::uint32_t slot, HistorySearchIndex::Handle handle) { m_slots[slot].record = handle; });
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
                slot.sequence = m_nextSequence++;
                if (!title.empty()) {
                    setTitle(index, std::string(title));
                }
                m_search.touch(slot.record, slot.entry, slot.sequence);
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
            compactSearch();
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
        setTitle(found->second, std::string(title));
        compactSearch();
        m_isDirty = true;
    }
    m_flush.schedule();
}

std::vector<HistoryEntry> HistoryStore::suggestions(std::string_view query, std::size_t limit) const
{
    std::string folded = Text::lowercased(Text::trimmed(query));
    if (folded.empty()) {
        return {};
    }
    std::lock_guard lock(m_lock);
    auto matches = m_search.best(folded, limit);
    std::vector<HistoryEntry> result;
    result.reserve(matches.size());
    for (const auto& match : matches) {
        result.push_back(m_slots[match.slot].entry);
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

void HistoryStore::forEachEntry(const std::function<void(const HistoryEntry&)>& visit) const
{
    std::lock_guard lock(m_lock);
    for (auto it = m_order.rbegin(); it != m_order.rend(); ++it) {
        visit(m_slots[*it].entry);
    }
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
