#include "core/FaviconStore.h"

#include "core/AppInfo.h"
#include "core/SharedInstance.h"

#include <algorithm>
#include <glib.h>
#include <vector>

namespace velder {

namespace {

using Shared = SharedInstance<FaviconStore, AppInfo::faviconFile>;

std::string base64(std::span<const std::uint8_t> bytes)
{
    gchar* encoded = g_base64_encode(bytes.data(), bytes.size());
    std::string result(encoded);
    g_free(encoded);
    return result;
}

bool startsWith(std::span<const std::uint8_t> bytes, std::initializer_list<std::uint8_t> prefix, size_t at = 0)
{
    if (bytes.size() < at + prefix.size()) {
        return false;
    }
    return std::equal(prefix.begin(), prefix.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
}

} // namespace

FaviconStore& FaviconStore::shared()
{
    return Shared::get();
}

void FaviconStore::setShared(std::shared_ptr<FaviconStore> store)
{
    Shared::set(std::move(store));
}

FaviconStore::FaviconStore(
    std::string path, std::optional<SymmetricKey> key, std::function<Date()> clock, Clock& flushClock)
    : m_file(std::move(path), std::move(key))
    , m_clock(std::move(clock))
    , m_flush(
          "local.velder.favicon-flush", debounce, [this] { writeIfDirty(); }, flushClock)
{
    FaviconData data = m_file.load(FaviconData());
    std::lock_guard lock(m_lock);
    m_icons = std::move(data.icons);
    std::erase_if(m_icons, [](const auto& item) { return item.first.empty() || item.second.data.empty(); });
    trim();
}

std::optional<std::string> FaviconStore::sniff(std::span<const std::uint8_t> bytes)
{
    // Each type needs its whole signature: a PNG is told by 8 bytes, a GIF by 4, a WebP by 12.
    auto head = bytes.first(std::min<size_t>(bytes.size(), 12));
    if (head.size() >= 8 && startsWith(head, { 0x89, 'P', 'N', 'G' })) {
        return "image/png";
    }
    if (startsWith(head, { 0x00, 0x00, 0x01, 0x00 })) {
        return "image/x-icon";
    }
    if (startsWith(head, { 0xFF, 0xD8, 0xFF })) {
        return "image/jpeg";
    }
    if (head.size() >= 4 && startsWith(head, { 'G', 'I', 'F' })) {
        return "image/gif";
    }
    if (startsWith(head, { 'R', 'I', 'F', 'F' }) && startsWith(head, { 'W', 'E', 'B', 'P' }, 8)) {
        return "image/webp";
    }
    if (startsWith(head, { 'B', 'M' })) {
        return "image/bmp";
    }
    return std::nullopt;
}

bool FaviconStore::needs(const std::string& site) const
{
    std::lock_guard lock(m_lock);
    auto found = m_icons.find(site);
    if (found == m_icons.end() || found->second.data.empty()) {
        return true;
    }
    return m_clock() - found->second.fetchedUtc > staleAfter;
}

bool FaviconStore::store(std::span<const std::uint8_t> bytes, const std::string& site)
{
    if (site.empty() || bytes.empty() || bytes.size() > maxBytes) {
        return false;
    }
    auto mime = sniff(bytes);
    if (!mime) {
        return false;
    }
    FaviconEntry entry { std::move(*mime), base64(bytes), m_clock() };
    {
        std::lock_guard lock(m_lock);
        m_icons.insert_or_assign(site, std::move(entry));
        trim();
        m_isDirty = true;
    }
    m_flush.schedule();
    return true;
}

std::optional<std::string> FaviconStore::dataUri(const std::string& site) const
{
    std::lock_guard lock(m_lock);
    auto found = m_icons.find(site);
    if (found == m_icons.end() || found->second.data.empty()) {
        return std::nullopt;
    }
    return "data:" + found->second.mime + ";base64," + found->second.data;
}

void FaviconStore::clear()
{
    {
        std::lock_guard lock(m_lock);
        if (m_icons.empty()) {
            return;
        }
        m_icons.clear();
        m_isDirty = true;
    }
    m_flush.schedule();
}

void FaviconStore::flushNow()
{
    m_flush.flushNow();
}

std::size_t FaviconStore::count() const
{
    std::lock_guard lock(m_lock);
    return m_icons.size();
}

std::optional<FaviconEntry> FaviconStore::entry(const std::string& site) const
{
    std::lock_guard lock(m_lock);
    auto found = m_icons.find(site);
    if (found == m_icons.end()) {
        return std::nullopt;
    }
    return found->second;
}

void FaviconStore::trim()
{
    if (m_icons.size() <= maxEntries) {
        return;
    }
    std::vector<std::pair<Date, std::string>> byAge;
    byAge.reserve(m_icons.size());
    for (const auto& [site, entry] : m_icons) {
        byAge.emplace_back(entry.fetchedUtc, site);
    }
    size_t excess = m_icons.size() - maxEntries;
    // The oldest `excess` entries end up in front; equal dates fall in any order.
    std::nth_element(byAge.begin(), byAge.begin() + static_cast<std::ptrdiff_t>(excess - 1), byAge.end());
    for (size_t i = 0; i < excess; ++i) {
        m_icons.erase(byAge[i].second);
    }
}

void FaviconStore::writeIfDirty()
{
    FaviconData data;
    {
        std::lock_guard lock(m_lock);
        if (!m_isDirty) {
            return;
        }
        data.icons = m_icons;
        m_isDirty = false;
    }
    if (!m_file.save(data)) {
        std::lock_guard lock(m_lock);
        m_isDirty = true;
    }
}

} // namespace velder
