// A file name suggested by a server or taken from an address, and the numbers a download's name takes.
// - a sanitised name is valid UTF-8, not empty, holds no "/", ":", "\" or control character, doesn't start
//   with "." (a hidden file), and comes to 200 UTF-16 units but where its extension alone is 199 or more
//   (or where the stem's one character is a surrogate pair);
// - sanitising it again changes nothing, unless it lost a blank at one end;
// - a numbered name keeps its extension, holds no "/" and doesn't start with "."; each number gives another
//   name, and the search for a free one offers them in order.

#include "FuzzCheck.h"

#include "bridge/VLDDownloadItem.h"
#include "core/DownloadName.h"

#include <glib.h>

using namespace velder;
using fuzz::check;

namespace {

size_t utf16Length(std::string_view text)
{
    size_t length = 0;
    for (const char* at = text.data(); at < text.data() + text.size(); at = g_utf8_next_char(at)) {
        length += g_utf8_get_char(at) > 0xFFFF ? 2 : 1;
    }
    return length;
}

bool isBlank(gunichar c)
{
    GUnicodeType type = g_unichar_type(c);
    return type == G_UNICODE_SPACE_SEPARATOR || type == G_UNICODE_LINE_SEPARATOR
        || type == G_UNICODE_PARAGRAPH_SEPARATOR;
}

// The extension as the numbering sees it: after the last ".", unless that is the first or last character.
std::string_view extension(std::string_view name)
{
    size_t dot = name.rfind('.');
    return (dot == std::string_view::npos || dot == 0 || dot + 1 == name.size()) ? std::string_view()
                                                                                 : name.substr(dot + 1);
}

void checkSanitised(const std::string& name)
{
    check(g_utf8_validate_len(name.data(), name.size(), nullptr), "a sanitised name is valid UTF-8");
    check(!name.empty(), "a sanitised name isn't empty");
    check(name.find_first_of("/:\\") == std::string::npos, "a sanitised name holds no / : or \\");
    check(!name.starts_with('.'), "a sanitised name doesn't start with a dot");
    for (const char* at = name.c_str(); *at; at = g_utf8_next_char(at)) {
        check(!g_unichar_iscntrl(g_utf8_get_char(at)), "a sanitised name holds no control character");
    }
    std::string_view stem = std::string_view(name).substr(0, name.size() - extension(name).size());
    check(utf16Length(name) <= 200 || utf16Length(extension(name)) >= 199
            || g_utf8_strlen(stem.data(), static_cast<gssize>(stem.size())) == 2,
        "a sanitised name is cut to 200 units but for a longer extension or a stem of one character");
    gunichar first = g_utf8_get_char(name.c_str());
    gunichar last = g_utf8_get_char(g_utf8_find_prev_char(name.c_str(), name.c_str() + name.size()));
    if (!isBlank(first) && !isBlank(last)) {
        check(VLDDownloadItem::sanitisedFilename(name) == name, "sanitising a sanitised name changes nothing");
    }
}

void checkNumbered(const std::string& name, int number)
{
    std::string numbered = DownloadName::numbered(name, number);
    if (number <= 1) {
        check(numbered == name, "the first number is the name itself");
        return;
    }
    check(numbered != name && numbered != DownloadName::numbered(name, number + 1), "each number is another name");
    check(numbered.find(" (" + std::to_string(number) + ")") != std::string::npos, "the number is in the name");
    if (std::string_view kept = extension(name); !kept.empty()) {
        check(numbered.ends_with(")." + std::string(kept)), "a numbered name keeps its extension");
    }
    check(numbered.find('/') == std::string::npos && !numbered.starts_with('.'), "a numbered name stays plain");

    int offered = 0;
    auto found = DownloadName::first("/folder", name, [&](const std::string& path) {
        ++offered;
        check(path == "/folder/" + DownloadName::numbered(name, offered), "names are offered in order");
        return offered == number;
    });
    check(found == "/folder/" + numbered, "the search ends at the accepted name");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 1) {
        return 0;
    }
    // Small numbers: the search past the last one is a loop's bound, which the unit tests walk.
    int number = data[0] % 16;
    std::string name = VLDDownloadItem::sanitisedFilename(fuzz::text(data + 1, size - 1));
    checkSanitised(name);
    checkNumbered(name, number);
    return 0;
}
