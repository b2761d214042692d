#include "core/JsonOutput.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace velder {

void JsonOutput::beforeValue()
{
    if (m_afterKey) {
        m_afterKey = false;
        return;
    }
    if (m_depth > 0) {
        Frame& frame = m_frames[m_depth - 1];
        if (frame.count++ > 0) {
            m_text.push_back(',');
        }
    }
}

void JsonOutput::beginObject()
{
    beforeValue();
    m_text.push_back('{');
    if (m_frames.size() <= m_depth) {
        m_frames.emplace_back();
    }
    Frame& frame = m_frames[m_depth++];
    frame.isObject = true;
    frame.start = m_text.size();
    frame.count = 0;
    frame.members.clear();
}

void JsonOutput::key(std::string_view name)
{
    Frame& frame = m_frames[m_depth - 1];
    if (frame.count++ > 0) {
        m_text.push_back(',');
    }
    frame.members.push_back({ std::string(name), m_text.size() });
    writeString(name);
    m_text.push_back(':');
    m_afterKey = true;
}

void JsonOutput::endObject()
{
    Frame& frame = m_frames[--m_depth];
    bool sorted = std::is_sorted(
        frame.members.begin(), frame.members.end(), [](const Member& a, const Member& b) { return a.key < b.key; });
    if (!sorted) {
        sortMembers(frame);
    }
    m_text.push_back('}');
}

void JsonOutput::sortMembers(Frame& frame)
{
    // Each member's text runs from its begin to the comma before the next member (or the end).
    std::vector<std::pair<const Member*, std::string_view>> pieces;
    std::string body = m_text.substr(frame.start);
    for (std::size_t i = 0; i < frame.members.size(); ++i) {
        std::size_t begin = frame.members[i].begin - frame.start;
        std::size_t end = i + 1 < frame.members.size() ? frame.members[i + 1].begin - frame.start - 1 : body.size();
        pieces.emplace_back(&frame.members[i], std::string_view(body).substr(begin, end - begin));
    }
    std::stable_sort(pieces.begin(), pieces.end(), [](auto& a, auto& b) { return a.first->key < b.first->key; });
    m_text.resize(frame.start);
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (i > 0) {
            m_text.push_back(',');
        }
        m_text.append(pieces[i].second);
    }
}

void JsonOutput::beginArray()
{
    beforeValue();
    m_text.push_back('[');
    if (m_frames.size() <= m_depth) {
        m_frames.emplace_back();
    }
    Frame& frame = m_frames[m_depth++];
    frame.isObject = false;
    frame.start = m_text.size();
    frame.count = 0;
}

void JsonOutput::endArray()
{
    --m_depth;
    m_text.push_back(']');
}

void JsonOutput::string(std::string_view text)
{
    beforeValue();
    writeString(text);
}

namespace {

// Whether any of eight bytes is a control character, a quote or a backslash. Each test is exact for the
// lowest byte that meets it, so the answer is too.
bool anyNeedsEscape(std::string_view eight)
{
    constexpr std::uint64_t ones = 0x0101010101010101;
    constexpr std::uint64_t highs = ones * 0x80;
    std::uint64_t word;
    std::memcpy(&word, eight.data(), sizeof word);
    auto hasZeroByte = [](std::uint64_t x) { return (x - ones) & ~x & highs; };
    return (((word - ones * 0x20) & ~word & highs) | hasZeroByte(word ^ (ones * '"'))
               | hasZeroByte(word ^ (ones * '\\')))
        != 0;
}

} // namespace

void JsonOutput::writeString(std::string_view text)
{
    static const char hex[] = "0123456789abcdef";
    m_text.push_back('"');
    std::size_t runStart = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        // Eight bytes at a time while none needs escaping: stored text is mostly plain.
        while (i + 8 <= text.size() && !anyNeedsEscape(text.substr(i, 8))) {
            i += 8;
        }
        if (i == text.size()) {
            break;
        }
        auto c = static_cast<unsigned char>(text[i]);
        if (c >= 0x20 && c != '"' && c != '\\') {
            continue;
        }
        m_text.append(text.substr(runStart, i - runStart));
        runStart = i + 1;
        switch (c) {
        case '"':
            m_text.append("\\\"");
            break;
        case '\\':
            m_text.append("\\\\");
            break;
        case '\n':
            m_text.append("\\n");
            break;
        case '\r':
            m_text.append("\\r");
            break;
        case '\t':
            m_text.append("\\t");
            break;
        case '\b':
            m_text.append("\\b");
            break;
        case '\f':
            m_text.append("\\f");
            break;
        default:
            m_text.append("\\u00");
            m_text.push_back(hex[c >> 4]);
            m_text.push_back(hex[c & 15]);
        }
    }
    m_text.append(text.substr(runStart));
    m_text.push_back('"');
}

void JsonOutput::integer(std::int64_t value)
{
    beforeValue();
    char buffer[24];
    auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    m_text.append(buffer, result.ptr);
}

void JsonOutput::number(double value)
{
    beforeValue();
    // JSON has no infinity or NaN; and zero is "0" whatever its sign, as "-0" would read back as the integer 0.
    if (!std::isfinite(value) || value == 0) {
        m_text.append("0");
        return;
    }
    char buffer[32];
    auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    m_text.append(buffer, result.ptr);
}

void JsonOutput::boolean(bool value)
{
    beforeValue();
    m_text.append(value ? "true" : "false");
}

} // namespace velder
