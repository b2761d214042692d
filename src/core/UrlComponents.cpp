#include "core/UrlComponents.h"

namespace velder {

namespace {

bool isAlpha(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isSchemeCharacter(char c)
{
    return isAlpha(c) || isDigit(c) || c == '+' || c == '-' || c == '.';
}

// Characters that can't stand in an authority, even where a lenient parser would encode them.
bool isForbiddenInAuthority(char c)
{
    auto byte = static_cast<unsigned char>(c);
    if (byte <= 0x20 || byte == 0x7F) {
        return true;
    }
    switch (c) {
    case '<':
    case '>':
    case '"':
    case '{':
    case '}':
    case '|':
    case '\\':
    case '^':
    case '`':
        return true;
    default:
        return false;
    }
}

} // namespace

namespace {

// A scheme stands before the first ":" that comes before any "/", "?" or "#". False: a scheme that isn't one.
bool takeScheme(std::string_view& rest, std::string_view& scheme)
{
    size_t colon = rest.find_first_of(":/?#");
    if (colon == std::string_view::npos || colon == 0 || rest[colon] != ':') {
        return true;
    }
    std::string_view candidate = rest.substr(0, colon);
    bool valid = isAlpha(candidate[0]);
    for (char c : candidate) {
        valid = valid && isSchemeCharacter(c);
    }
    if (valid) {
        scheme = candidate;
        rest.remove_prefix(colon + 1);
    }
    return valid;
}

// The authority after "//", without its user part; none if it holds a character no authority may.
std::optional<std::string_view> takeAuthority(std::string_view rest)
{
    size_t end = 0;
    while (end < rest.size() && rest[end] != '/' && rest[end] != '?' && rest[end] != '#') {
        if (isForbiddenInAuthority(rest[end])) {
            return std::nullopt;
        }
        ++end;
    }
    std::string_view authority = rest.substr(0, end);
    if (size_t at = authority.rfind('@'); at != std::string_view::npos) {
        authority.remove_prefix(at + 1);
    }
    return authority;
}

struct HostAndPort {
    std::string_view host;
    std::optional<std::string_view> port;
};

// "[v6]:port" or "name:port"; none for a bracket left open, a stray character in brackets or a second colon.
std::optional<HostAndPort> splitHostAndPort(std::string_view authority)
{
    HostAndPort result;
    if (authority.starts_with('[')) {
        size_t close = authority.find(']');
        if (close == std::string_view::npos) {
            return std::nullopt;
        }
        result.host = authority.substr(0, close + 1);
        for (char c : result.host.substr(1, result.host.size() - 2)) {
            if (!(isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F') || c == ':' || c == '.')) {
                return std::nullopt;
            }
        }
        std::string_view after = authority.substr(close + 1);
        if (!after.empty()) {
            if (after[0] != ':') {
                return std::nullopt;
            }
            result.port = after.substr(1);
        }
        return result;
    }
    size_t portColon = authority.rfind(':');
    result.host = authority.substr(0, portColon);
    if (portColon != std::string_view::npos) {
        result.port = authority.substr(portColon + 1);
    }
    if (result.host.find_first_of(":[]") != std::string_view::npos) {
        return std::nullopt;
    }
    return result;
}

// Up to five digits, at most 65535.
std::optional<int> parsePort(std::string_view text)
{
    if (text.size() > 5) {
        return std::nullopt;
    }
    int port = 0;
    for (char c : text) {
        if (!isDigit(c)) {
            return std::nullopt;
        }
        port = port * 10 + (c - '0');
    }
    return port <= 65535 ? std::optional(port) : std::nullopt;
}

} // namespace

std::optional<UrlComponents> UrlComponents::parse(std::string_view text)
{
    UrlComponents result;
    std::string_view rest = text;
    if (!takeScheme(rest, result.scheme)) {
        return std::nullopt;
    }
    if (!rest.starts_with("//")) {
        return result;
    }
    auto authority = takeAuthority(rest.substr(2));
    auto parts = authority ? splitHostAndPort(*authority) : std::nullopt;
    if (!parts) {
        return std::nullopt;
    }
    // "host:" with nothing after the colon states no port.
    if (parts->port && !parts->port->empty()) {
        auto port = parsePort(*parts->port);
        if (!port) {
            return std::nullopt;
        }
        result.port = *port;
    }
    result.host = parts->host;
    return result;
}

} // namespace velder
