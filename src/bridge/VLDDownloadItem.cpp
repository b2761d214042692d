#include "bridge/VLDDownloadItem.h"

#include <glib.h>
#include <vector>

namespace velder {

namespace {

// One character of the name, as it came: a code point, or a byte that isn't valid UTF-8 (code point -1).
struct Piece {
    std::string text;
    gunichar codePoint;
};

std::vector<Piece> splitCharacters(std::string_view name)
{
    std::vector<Piece> pieces;
    const char* p = name.data();
    const char* end = name.data() + name.size();
    while (p < end) {
        gunichar c = g_utf8_get_char_validated(p, end - p);
        if (c == static_cast<gunichar>(-1) || c == static_cast<gunichar>(-2)) {
            pieces.push_back({ std::string(p, 1), static_cast<gunichar>(-1) });
            ++p;
            continue;
        }
        const char* next = g_utf8_next_char(p);
        pieces.push_back({ std::string(p, next), c });
        p = next;
    }
    return pieces;
}

bool isReplaced(gunichar c)
{
    if (c == static_cast<gunichar>(-1) || c == '/' || c == ':' || c == '\\') {
        return true;
    }
    switch (g_unichar_type(c)) {
    case G_UNICODE_CONTROL:
    case G_UNICODE_FORMAT:
    case G_UNICODE_UNASSIGNED:
    case G_UNICODE_SURROGATE:
        return true;
    default:
        return false;
    }
}

bool isBlank(gunichar c)
{
    switch (g_unichar_type(c)) {
    case G_UNICODE_SPACE_SEPARATOR:
    case G_UNICODE_LINE_SEPARATOR:
    case G_UNICODE_PARAGRAPH_SEPARATOR:
        return true;
    default:
        return c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r' || c == 0x85;
    }
}

size_t utf16Length(const Piece& piece)
{
    return piece.codePoint != static_cast<gunichar>(-1) && piece.codePoint > 0xFFFF ? 2 : 1;
}

size_t utf16Length(const std::vector<Piece>& pieces, size_t from, size_t to)
{
    size_t length = 0;
    for (size_t i = from; i < to; ++i) {
        length += utf16Length(pieces[i]);
    }
    return length;
}

std::string join(const std::vector<Piece>& pieces, size_t from, size_t to)
{
    std::string text;
    for (size_t i = from; i < to; ++i) {
        text += pieces[i].text;
    }
    return text;
}

constexpr size_t nameLimit = 200;

} // namespace

std::string VLDDownloadItem::sanitisedFilename(std::string_view name)
{
    std::vector<Piece> pieces;
    for (auto& piece : splitCharacters(name)) {
        pieces.push_back(isReplaced(piece.codePoint) ? Piece { "_", '_' } : std::move(piece));
    }

    size_t begin = 0;
    size_t end = pieces.size();
    while (begin < end && isBlank(pieces[begin].codePoint)) {
        ++begin;
    }
    while (end > begin && isBlank(pieces[end - 1].codePoint)) {
        --end;
    }
    while (begin < end && pieces[begin].codePoint == '.') {
        ++begin;
    }
    if (begin == end) {
        return "download";
    }
    if (utf16Length(pieces, begin, end) <= nameLimit) {
        return join(pieces, begin, end);
    }

    // Too long: keep the extension and cut the stem.
    size_t dot = end;
    for (size_t i = end; i > begin + 1; --i) {
        if (pieces[i - 1].codePoint == '.') {
            dot = i - 1;
            break;
        }
    }
    size_t stemEnd = end;
    std::string extension;
    size_t extensionLength = 0;
    if (dot != end && dot + 1 < end) {
        stemEnd = dot;
        extension = join(pieces, dot + 1, end);
        extensionLength = utf16Length(pieces, dot + 1, end);
    }
    // The dot and the extension come off the limit, unless that left no room; a name without one keeps it all.
    size_t stemLimit
        = !extension.empty() && extensionLength + 1 <= nameLimit - 1 ? nameLimit - 1 - extensionLength : nameLimit;
    size_t stemCut = begin;
    size_t stemLength = 0;
    while (stemCut < stemEnd && stemLength + utf16Length(pieces[stemCut]) <= stemLimit) {
        stemLength += utf16Length(pieces[stemCut]);
        ++stemCut;
    }
    // A stem cut to nothing would leave ".extension", a hidden file: its first character stays, though a
    // surrogate pair then passes the limit by one unit.
    if (stemCut == begin && stemEnd > begin) {
        ++stemCut;
    }
    std::string result = join(pieces, begin, stemCut);
    if (!extension.empty()) {
        result += "." + extension;
    }
    return result.empty() ? "download" : result;
}

} // namespace velder
