// Any address, as history entries, pages and typed text bring them.
// - a scheme is empty or a letter followed by scheme characters, and the text starts with it and ":";
// - a host lies inside the text, holds no character an authority can't, no "/", "?", "#" or "@", and is
//   bracketed only as a whole;
// - a port is 0 to 65535;
// - the scheme, host and port written again as "scheme://host:port" parse to the same parts, and a path
//   added after the address changes none of them.

#include "FuzzCheck.h"

#include "core/UrlComponents.h"

#include <algorithm>

using namespace velder;
using fuzz::check;

namespace {

bool isSchemeCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '+' || c == '-'
        || c == '.';
}

bool same(const UrlComponents& a, const UrlComponents& b)
{
    return a.scheme == b.scheme && a.host == b.host && a.port == b.port;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view text = fuzz::text(data, size);
    auto parts = UrlComponents::parse(text);
    if (!parts) {
        return 0;
    }
    if (!parts->scheme.empty()) {
        check(std::all_of(parts->scheme.begin(), parts->scheme.end(), isSchemeCharacter)
                && !(parts->scheme[0] >= '0' && parts->scheme[0] <= '9') && isSchemeCharacter(parts->scheme[0])
                && parts->scheme[0] != '+' && parts->scheme[0] != '-' && parts->scheme[0] != '.',
            "a scheme is a letter, then scheme characters");
        check(text.starts_with(parts->scheme) && text[parts->scheme.size()] == ':', "the text starts with the scheme");
    }
    check(!parts->port || (*parts->port >= 0 && *parts->port <= 65535), "a port is 0 to 65535");
    check(parts->host || !parts->port, "no port without a host");
    if (!parts->host) {
        return 0;
    }
    std::string_view host = *parts->host;
    check(host.data() >= text.data() && host.data() + host.size() <= text.data() + text.size(),
        "the host lies inside the text");
    for (char c : host) {
        auto byte = static_cast<unsigned char>(c);
        check(byte > 0x20 && byte != 0x7F && std::string_view("<>\"{}|\\^`/?#@").find(c) == std::string_view::npos,
            "a host holds no character an authority can't");
    }
    bool bracketed = host.starts_with('[');
    check(bracketed == host.ends_with(']') && (host.size() != 1 || !bracketed), "brackets enclose the host");
    check(host.find_first_of("[]", 1) == (bracketed ? host.size() - 1 : std::string_view::npos),
        "no bracket inside the host");

    std::string again = std::string(parts->scheme) + (parts->scheme.empty() ? "//" : "://") + std::string(host);
    if (parts->port) {
        again += ":" + std::to_string(*parts->port);
    }
    auto reparsed = UrlComponents::parse(again);
    check(reparsed && same(*reparsed, *parts), "the parts written again parse the same");

    std::string longer = std::string(text) + "/path?query#fragment";
    auto extended = UrlComponents::parse(longer);
    check(extended && same(*extended, *parts), "a path after the address changes no part");
    return 0;
}
