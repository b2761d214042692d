#include "core/Text.h"

#include <glib.h>

namespace velder::Text {

namespace {

bool isSpaceCodePoint(char32_t c)
{
    switch (c) {
    case 0x09:
    case 0x0A:
    case 0x0B:
    case 0x0C:
    case 0x0D:
    case 0x20:
    case 0x85:
    case 0xA0:
    case 0x1680:
    case 0x2028:
    case 0x2029:
    case 0x202F:
    case 0x205F:
    case 0x3000:
        return true;
    default:
        return c >= 0x2000 && c <= 0x200A;
    }
}

// The code point that starts at `at` and its length, or nothing for an invalid sequence: a stray or
// missing continuation byte, a lead byte no sequence has (0xF8 and above), a longer form than the code
// point needs, a surrogate, or a code point past U+10FFFF.
bool decodeAt(std::string_view text, size_t at, char32_t& codePoint, size_t& length)
{
    auto byte = static_cast<unsigned char>(text[at]);
    if (byte < 0x80) {
        codePoint = byte;
        length = 1;
        return true;
    }
    size_t count = byte >= 0xF8 ? 0 : byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 0;
    if (count == 0 || at + count > text.size()) {
        return false;
    }
    char32_t value = byte & (0x3F >> (count - 1));
    for (size_t i = 1; i < count; ++i) {
        auto next = static_cast<unsigned char>(text[at + i]);
        if ((next & 0xC0) != 0x80) {
            return false;
        }
        value = (value << 6) | (next & 0x3F);
    }
    constexpr char32_t shortest[] = { 0, 0, 0x80, 0x800, 0x10000 };
    if (value < shortest[count] || (value >= 0xD800 && value <= 0xDFFF) || value > 0x10FFFF) {
        return false;
    }
    codePoint = value;
    length = count;
    return true;
}

// The length of the space that ends at `end`, or 0.
size_t spaceEndingAt(std::string_view text, size_t end)
{
    for (size_t length = 1; length <= 3 && length <= end; ++length) {
        char32_t c;
        size_t decoded;
        if (decodeAt(text, end - length, c, decoded) && decoded == length) {
            return isSpaceCodePoint(c) ? length : 0;
        }
    }
    return 0;
}

int hexValue(char c)
{
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

} // namespace

std::string_view trimmed(std::string_view text)
{
    size_t start = 0;
    while (start < text.size()) {
        char32_t c;
        size_t length;
        if (!decodeAt(text, start, c, length) || !isSpaceCodePoint(c)) {
            break;
        }
        start += length;
    }
    size_t end = text.size();
    while (end > start) {
        size_t length = spaceEndingAt(text, end);
        if (length == 0) {
            break;
        }
        end -= length;
    }
    return text.substr(start, end - start);
}

std::string_view trimmedBlanks(std::string_view text)
{
    size_t start = text.find_first_not_of(" \t");
    if (start == std::string_view::npos) {
        return {};
    }
    size_t end = text.find_last_not_of(" \t");
    return text.substr(start, end - start + 1);
}

bool isAscii(std::string_view text)
{
    for (char c : text) {
        if (static_cast<unsigned char>(c) >= 0x80) {
            return false;
        }
    }
    return true;
}

std::string asciiLowercased(std::string_view text)
{
    std::string result(text);
    for (char& c : result) {
        c = asciiLower(c);
    }
    return result;
}

bool asciiEqualsIgnoringCase(std::string_view a, std::string_view b)
{
    if (a.size() != b.size()) {
        return false;
    }
    for (size_t i = 0; i < a.size(); ++i) {
        if (asciiLower(a[i]) != asciiLower(b[i])) {
            return false;
        }
    }
    return true;
}

bool asciiStartsWithIgnoringCase(std::string_view text, std::string_view prefix)
{
    return text.size() >= prefix.size() && asciiEqualsIgnoringCase(text.substr(0, prefix.size()), prefix);
}

std::string lowercased(std::string_view text)
{
    if (isAscii(text)) {
        return asciiLowercased(text);
    }
    std::string valid(text);
    if (!g_utf8_validate(valid.data(), static_cast<gssize>(valid.size()), nullptr)) {
        gchar* repaired = g_utf8_make_valid(valid.data(), static_cast<gssize>(valid.size()));
        valid = repaired;
        g_free(repaired);
    }
    gchar* lower = g_utf8_strdown(valid.data(), static_cast<gssize>(valid.size()));
    std::string result(lower);
    g_free(lower);
    return result;
}

std::string firstCharacterUppercased(std::string_view text)
{
    if (text.empty()) {
        return {};
    }
    char32_t c;
    size_t length;
    if (!decodeAt(text, 0, c, length)) {
        return "?";
    }
    if (length == 1) {
        char upper = (text[0] >= 'a' && text[0] <= 'z') ? static_cast<char>(text[0] - ('a' - 'A')) : text[0];
        return std::string(1, upper);
    }
    gchar* upper = g_utf8_strup(text.data(), static_cast<gssize>(length));
    std::string result(upper);
    g_free(upper);
    return result;
}

std::string percentEncoded(std::string_view text, std::string_view unreserved)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string result;
    result.reserve(text.size());
    for (char c : text) {
        auto byte = static_cast<unsigned char>(c);
        bool keep = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')
            || (byte < 0x80 && unreserved.find(c) != std::string_view::npos);
        if (keep) {
            result.push_back(c);
        } else {
            result.push_back('%');
            result.push_back(digits[byte >> 4]);
            result.push_back(digits[byte & 0xF]);
        }
    }
    return result;
}

std::optional<std::string> percentDecoded(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            result.push_back(text[i]);
            continue;
        }
        if (i + 2 >= text.size()) {
            return std::nullopt;
        }
        int high = hexValue(text[i + 1]);
        int low = hexValue(text[i + 2]);
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        result.push_back(static_cast<char>(high * 16 + low));
        i += 2;
    }
    for (size_t at = 0; at < result.size();) {
        char32_t c;
        size_t length;
        if (!decodeAt(result, at, c, length)) {
            return std::nullopt;
        }
        at += length;
    }
    return result;
}

void replaceAll(std::string& text, std::string_view placeholder, std::string_view replacement)
{
    if (placeholder.empty()) {
        return;
    }
    size_t at = text.find(placeholder);
    if (at == std::string::npos) {
        return;
    }
    std::string result;
    result.reserve(text.size() + replacement.size());
    size_t from = 0;
    while (at != std::string::npos) {
        result.append(text, from, at - from);
        result.append(replacement);
        from = at + placeholder.size();
        at = text.find(placeholder, from);
    }
    result.append(text, from, std::string::npos);
    text = std::move(result);
}

} // namespace velder::Text
