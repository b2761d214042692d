#include "core/HistorySearchIndex.h"

#include "core/Text.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace velder {

// A record is this header, the address, the title, padding, and the record's size in its last four bytes,
// so that the buffer can be walked from either end.
struct HistorySearchIndex::Header {
    std::int64_t lastVisit; // ticks of Date
    std::int64_t visitCount;
    std::uint64_t sequence;
    std::uint64_t characters; // the bytes of the address and title as compared, as a set of bits
    std::uint32_t slot;
    std::uint32_t urlLength;
    std::uint32_t titleLength;
    std::uint32_t hostOffset; // where the address without "scheme://" and one "www." begins
    std::uint8_t flags;
};

namespace {

using Header = HistorySearchIndex::Header;

constexpr std::uint8_t live = 1;
constexpr std::uint8_t foldUrl = 2; // ASCII: lower-cased while comparing
constexpr std::uint8_t foldTitle = 4;

std::size_t recordSize(std::size_t textLength)
{
    return (sizeof(Header) + textLength + sizeof(std::uint32_t) + 7) & ~std::size_t(7);
}

std::size_t recordSize(const Header& header)
{
    return recordSize(std::size_t(header.urlLength) + header.titleLength);
}

Header headerAt(const std::vector<std::byte>& buffer, std::size_t at)
{
    Header header;
    std::memcpy(&header, buffer.data() + at, sizeof header);
    return header;
}

// A match needs every byte of the query somewhere in the address or the title: a cheap test that rules
// out most entries before any text is compared. Letters and digits have bits of their own; other bytes
// share the rest.
std::uint64_t characterBit(unsigned char c)
{
    if (c >= 'a' && c <= 'z') {
        return std::uint64_t(1) << (c - 'a');
    }
    if (c >= '0' && c <= '9') {
        return std::uint64_t(1) << (26 + c - '0');
    }
    return std::uint64_t(1) << (36 + c % 28);
}

std::uint64_t characterMask(std::string_view text, bool fold)
{
    std::uint64_t mask = 0;
    for (char c : text) {
        mask |= characterBit(static_cast<unsigned char>(fold ? Text::asciiLower(c) : c));
    }
    return mask;
}

// Compares text with the folded query; `fold` lower-cases ASCII text on the way.
bool matchesAt(const char* text, std::string_view query, bool fold)
{
    if (!fold) {
        return std::memcmp(text, query.data(), query.size()) == 0;
    }
    for (size_t i = 0; i < query.size(); ++i) {
        if (Text::asciiLower(text[i]) != query[i]) {
            return false;
        }
    }
    return true;
}

bool startsWith(std::string_view text, std::string_view query, bool fold)
{
    return text.size() >= query.size() && matchesAt(text.data(), query, fold);
}

// Whether the folded query occurs in the text. Where the text folds while comparing and the query begins
// with a letter, eight bytes at a time are tested for that letter in either case: a byte b has
// (b | 0x20) == c exactly when b is c or its upper case.
bool contains(std::string_view text, std::string_view query, bool fold)
{
    if (query.size() > text.size()) {
        return false;
    }
    if (!fold) {
        return text.find(query) != std::string_view::npos;
    }
    const char first = query[0];
    const char* data = text.data();
    const size_t lastStart = text.size() - query.size();
    size_t i = 0;
    if (first >= 'a' && first <= 'z' && std::endian::native == std::endian::little) {
        constexpr std::uint64_t ones = 0x0101010101010101ULL;
        const std::uint64_t pattern = ones * static_cast<unsigned char>(first);
        for (; i + 8 <= lastStart + 1; i += 8) {
            std::uint64_t word;
            std::memcpy(&word, data + i, 8);
            std::uint64_t x = (word | (ones * 0x20)) ^ pattern;
            // A zero byte of x is a candidate; the lowest is exact, higher ones may be false and are checked.
            std::uint64_t candidates = (x - ones) & ~x & (ones * 0x80);
            while (candidates) {
                size_t at = i + static_cast<size_t>(std::countr_zero(candidates)) / 8;
                if (matchesAt(data + at, query, true)) {
                    return true;
                }
                candidates &= candidates - 1;
            }
        }
    }
    for (; i <= lastStart; ++i) {
        if (Text::asciiLower(data[i]) == first && matchesAt(data + i, query, true)) {
            return true;
        }
    }
    return false;
}

} // namespace

HistorySearchIndex::Handle HistorySearchIndex::add(
    std::uint32_t slot, const HistoryEntry& entry, std::uint64_t sequence)
{
    bool asciiUrl = Text::isAscii(entry.url);
    bool asciiTitle = Text::isAscii(entry.title);
    std::string foldedUrl = asciiUrl ? std::string() : Text::lowercased(entry.url);
    std::string foldedTitle = asciiTitle ? std::string() : Text::lowercased(entry.title);
    std::string_view url = asciiUrl ? std::string_view(entry.url) : std::string_view(foldedUrl);
    std::string_view title = asciiTitle ? std::string_view(entry.title) : std::string_view(foldedTitle);

    size_t hostOffset = url.find("://");
    hostOffset = hostOffset == std::string_view::npos ? 0 : hostOffset + 3;
    if (Text::asciiStartsWithIgnoringCase(url.substr(hostOffset), "www.")) {
        hostOffset += 4;
    }
    Header header { entry.lastVisitUtc.time_since_epoch().count(), entry.visitCount, sequence,
        characterMask(url, asciiUrl) | characterMask(title, asciiTitle), slot, static_cast<std::uint32_t>(url.size()),
        static_cast<std::uint32_t>(title.size()), static_cast<std::uint32_t>(hostOffset),
        static_cast<std::uint8_t>(live | (asciiUrl ? foldUrl : 0) | (asciiTitle ? foldTitle : 0)) };

    Handle handle = m_buffer.size();
    auto size = static_cast<std::uint32_t>(recordSize(url.size() + title.size()));
    m_buffer.resize(handle + size);
    std::byte* at = m_buffer.data() + handle;
    std::memcpy(at, &header, sizeof header);
    std::memcpy(at + sizeof header, url.data(), url.size());
    std::memcpy(at + sizeof header + url.size(), title.data(), title.size());
    std::memcpy(at + size - sizeof size, &size, sizeof size);
    return handle;
}

void HistorySearchIndex::remove(Handle handle)
{
    Header header = headerAt(m_buffer, handle);
    header.flags &= static_cast<std::uint8_t>(~live);
    std::memcpy(m_buffer.data() + handle, &header, sizeof header);
    m_wasted += recordSize(header);
}

void HistorySearchIndex::touch(Handle handle, const HistoryEntry& entry, std::uint64_t sequence)
{
    Header header = headerAt(m_buffer, handle);
    header.lastVisit = entry.lastVisitUtc.time_since_epoch().count();
    header.visitCount = entry.visitCount;
    header.sequence = sequence;
    std::memcpy(m_buffer.data() + handle, &header, sizeof header);
}

void HistorySearchIndex::clear()
{
    m_buffer.clear();
    m_buffer.shrink_to_fit();
    m_wasted = 0;
}

void HistorySearchIndex::compactIfWasteful(const std::function<void(std::uint32_t, Handle)>& moved)
{
    if (m_wasted < 4096 || m_wasted <= m_buffer.size() - m_wasted) {
        return;
    }
    std::vector<std::byte> compacted;
    compacted.reserve(m_buffer.size() - m_wasted);
    for (size_t at = 0; at < m_buffer.size();) {
        Header header = headerAt(m_buffer, at);
        size_t size = recordSize(header);
        if (header.flags & live) {
            moved(header.slot, compacted.size());
            compacted.insert(compacted.end(), m_buffer.begin() + static_cast<std::ptrdiff_t>(at),
                m_buffer.begin() + static_cast<std::ptrdiff_t>(at + size));
        }
        at += size;
    }
    m_buffer = std::move(compacted);
    m_wasted = 0;
}

bool HistorySearchIndex::comesBefore(const Match& a, const Match& b)
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
    return a.sequence > b.sequence;
}

std::vector<HistorySearchIndex::Match> HistorySearchIndex::best(std::string_view query, std::size_t limit) const
{
    std::vector<Match> matches;
    if (query.empty() || limit == 0) {
        return matches;
    }
    const std::uint64_t queryCharacters = characterMask(query, false);
    // A short list is kept sorted as the scan goes, and an entry that couldn't enter it even at the rank it
    // is sure to have isn't searched any further. A long list is sorted once at the end. Sequences make the
    // order total, so both give the same list.
    const bool keepTopOnly = limit <= 64;
    // From the end: the newest records first, which fill the list early with entries hard to beat.
    for (size_t end = m_buffer.size(); end > 0;) {
        std::uint32_t size;
        std::memcpy(&size, m_buffer.data() + end - sizeof size, sizeof size);
        end -= size;
        Header header = headerAt(m_buffer, end);
        if (!(header.flags & live) || (queryCharacters & ~header.characters)) {
            continue;
        }
        const char* text = reinterpret_cast<const char*>(m_buffer.data() + end + sizeof header);
        std::string_view url(text, header.urlLength);
        bool fold = header.flags & foldUrl;
        Match match { 0, header.visitCount, Date(Date::duration(header.lastVisit)), header.sequence, header.slot };
        if (startsWith(url, query, fold)) {
            match.rank = 3;
        } else if (startsWith(url.substr(header.hostOffset), query, fold)) {
            match.rank = 2;
        } else {
            match.rank = 1;
            if (keepTopOnly && matches.size() == limit && !comesBefore(match, matches.back())) {
                continue;
            }
            if (!contains(url, query, fold)
                && !contains(
                    std::string_view(text + header.urlLength, header.titleLength), query, header.flags & foldTitle)) {
                continue;
            }
        }
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
        std::sort(matches.begin(), matches.end(), comesBefore);
        if (matches.size() > limit) {
            matches.resize(limit);
        }
    }
    return matches;
}

} // namespace velder
