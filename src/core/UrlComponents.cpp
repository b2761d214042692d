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

std::optional<UrlComponents> UrlComponents::parse(std::string_view text)
{
    UrlComponents result;
    std::string_view rest = text;

    // A scheme stands before the first ":" that comes before any "/", "?" or "#".
    size_t colon = std::string_view::npos;
    for (size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (c == ':') {
            colon = i;
            break;
        }
        if (c == '/' || c == '?' || c == '#') {
            break;
        }
    }
    if (colon != std::string_view::npos && colon > 0) {
        std::string_view candidate = text.substr(0, colon);
        bool valid = isAlpha(candidate[0]);
        for (char c : candidate) {
            valid = valid && isSchemeCharacter(c);
        }
        if (!valid) {
            return std::nullopt;
        }
        result.scheme = candidate;
        rest = text.substr(colon + 1);
    }

    if (!rest.starts_with("//")) {
        return result;
    }
    rest.remove_prefix(2);
    size_t authorityEnd = 0;
    while (authorityEnd < rest.size() && rest[authorityEnd] != '/' && rest[authorityEnd] != '?'
        && rest[authorityEnd] != '#') {
        if (isForbiddenInAuthority(rest[authorityEnd])) {
            return std::nullopt;
        }
        ++authorityEnd;
    }
    std::string_view authority = rest.substr(0, authorityEnd);
    if (size_t at = authority.rfind('@'); at != std::string_view::npos) {
        authority.remove_prefix(at + 1);
    }

    std::string_view host;
    std::string_view portText;
    bool hasPort = false;
    if (authority.starts_with('[')) {
        size_t close = authority.find(']');
        if (close == std::string_view::npos) {
            return std::nullopt;
        }
        host = authority.substr(0, close + 1);
        for (char c : host.substr(1, host.size() - 2)) {
            if (!(isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F') || c == ':' || c == '.')) {
                return std::nullopt;
            }
        }
        std::string_view after = authority.substr(close + 1);
        if (!after.empty()) {
            if (after[0] != ':') {
                return std::nullopt;
            }
            hasPort = true;
            portText = after.substr(1);
        }
    } else {
        size_t portColon = authority.rfind(':');
        if (portColon != std::string_view::npos) {
            hasPort = true;
            portText = authority.substr(portColon + 1);
            host = authority.substr(0, portColon);
        } else {
            host = authority;
        }
        if (host.find(':') != std::string_view::npos || host.find('[') != std::string_view::npos
            || host.find(']') != std::string_view::npos) {
            return std::nullopt;
        }
    }

    // "host:" with nothing after the colon states no port.
    if (hasPort && !portText.empty()) {
        if (portText.size() > 5) {
            return std::nullopt;
        }
        int port = 0;
        for (char c : portText) {
            if (!isDigit(c)) {
                return std::nullopt;
            }
            port = port * 10 + (c - '0');
        }
        if (port > 65535) {
            return std::nullopt;
        }
        result.port = port;
    }
    result.host = host;
    return result;
}

} // namespace velder
