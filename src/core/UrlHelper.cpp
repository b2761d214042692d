#include "core/UrlHelper.h"

#include "core/Text.h"
#include "core/UrlComponents.h"

#include <algorithm>
#include <array>
#include <glib.h>
#include <utility>

namespace velder::UrlHelper {

namespace {

constexpr std::array<std::string_view, 5> blockedSchemes { "javascript", "data", "file", "vbscript", "blob" };
constexpr std::array<std::string_view, 6> navigableSchemes { "http", "https", "velder", "about", "chrome",
    "view-source" };
constexpr std::array<std::pair<std::string_view, std::string_view>, 6> internalAliases { {
    { "about:dashboard", "velder://dashboard/" },
    { "about:about", "velder://about/" },
    { "about:version", "velder://about/" },
    { "about:config", "velder://settings/" },
    { "about:settings", "velder://settings/" },
    { "about:history", "velder://history/" },
} };

template<size_t N> bool contains(const std::array<std::string_view, N>& set, std::string_view value)
{
    return std::find(set.begin(), set.end(), value) != set.end();
}

bool isAsciiLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isAsciiDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Four decimal numbers of 0 to 255 joined by dots, as "192.168.1.1".
bool isDottedIPv4(std::string_view text)
{
    int parts = 0;
    size_t at = 0;
    while (true) {
        size_t digits = 0;
        int value = 0;
        while (at < text.size() && isAsciiDigit(text[at]) && digits < 4) {
            value = value * 10 + (text[at] - '0');
            ++at;
            ++digits;
        }
        if (digits == 0 || digits > 3 || value > 255) {
            return false;
        }
        ++parts;
        if (at == text.size()) {
            return parts == 4;
        }
        if (text[at] != '.' || parts == 4) {
            return false;
        }
        ++at;
    }
}

// An IPv4 address with an optional port and path: "127.0.0.1", "127.0.0.1:8080", "192.168.1.1/admin".
bool isIPv4Address(std::string_view text)
{
    std::string_view hostPort = text.substr(0, text.find('/'));
    std::string_view host = hostPort;
    if (size_t colon = hostPort.find(':'); colon != std::string_view::npos) {
        std::string_view port = hostPort.substr(colon + 1);
        if (port.empty() || port.size() > 5 || !std::all_of(port.begin(), port.end(), isAsciiDigit)
            || std::stoi(std::string(port)) > 65535) {
            return false;
        }
        host = hostPort.substr(0, colon);
    }
    return isDottedIPv4(host);
}

// At least two characters, all letters (any script: "рф" is a top-level domain too).
bool isWordOfLetters(std::string_view piece)
{
    if (!g_utf8_validate(piece.data(), static_cast<gssize>(piece.size()), nullptr)) {
        return false;
    }
    size_t count = 0;
    for (const char* at = piece.data(); at < piece.data() + piece.size(); at = g_utf8_next_char(at)) {
        if (!g_unichar_isalpha(g_utf8_get_char(at))) {
            return false;
        }
        ++count;
    }
    return count >= 2;
}

// Whether typed text without a scheme names a host rather than a search.
bool looksLikeHost(std::string_view text)
{
    if (text.find_first_of(" \t\n\r\v\f") != std::string_view::npos) {
        return false;
    }
    if (text.starts_with("localhost") || text.starts_with("[::1]")) {
        return true;
    }
    // Numeric addresses have no letters at the end, so the name rule below would make them a search.
    if (isIPv4Address(text)) {
        return true;
    }
    std::string_view first = text.substr(0, text.find('/'));
    if (first.find('.') == std::string_view::npos || first.starts_with('.') || first.ends_with('.')) {
        return false;
    }
    first = first.substr(0, first.find(':'));
    std::string_view last;
    size_t start = 0;
    bool any = false;
    while (start <= first.size()) {
        size_t dot = first.find('.', start);
        std::string_view piece
            = first.substr(start, dot == std::string_view::npos ? std::string_view::npos : dot - start);
        if (!piece.empty()) {
            last = piece;
            any = true;
        }
        if (dot == std::string_view::npos) {
            break;
        }
        start = dot + 1;
    }
    return any && isWordOfLetters(last);
}

// Loopback and literal IPv4 addresses rarely have certificates: they are opened over plain http.
std::string hostPrefix(std::string_view text)
{
    bool plain = text.starts_with("localhost") || text.starts_with("127.0.0.1") || text.starts_with("[::1]")
        || isIPv4Address(text);
    return plain ? "http://" : "https://";
}

std::string_view withoutLeadingWww(std::string_view host)
{
    return host.starts_with("www.") ? host.substr(4) : host;
}

} // namespace

std::optional<std::string> scheme(std::string_view text)
{
    size_t colon = text.find(':');
    if (colon == std::string_view::npos || colon == 0) {
        return std::nullopt;
    }
    std::string_view candidate = text.substr(0, colon);
    if (!isAsciiLetter(candidate[0])) {
        return std::nullopt;
    }
    for (char c : candidate) {
        if (!(isAsciiLetter(c) || isAsciiDigit(c) || c == '+' || c == '-' || c == '.')) {
            return std::nullopt;
        }
    }
    return Text::asciiLowercased(candidate);
}

std::optional<std::string> internalAlias(std::string_view text)
{
    std::string key = Text::lowercased(Text::trimmed(text));
    while (!key.empty() && key.back() == '/') {
        key.pop_back();
    }
    for (auto& [typed, url] : internalAliases) {
        if (typed == key) {
            return std::string(url);
        }
    }
    return std::nullopt;
}

std::optional<std::string> navigationTarget(std::string_view typed, std::string_view searchTemplate)
{
    std::string_view text = Text::trimmed(typed);
    if (text.empty()) {
        return std::nullopt;
    }
    if (auto alias = internalAlias(text)) {
        return alias;
    }
    if (auto found = scheme(text)) {
        if (contains(blockedSchemes, *found)) {
            return std::nullopt;
        }
        return std::string(text);
    }
    if (looksLikeHost(text)) {
        return hostPrefix(text) + std::string(text);
    }
    std::string encoded = Text::percentEncoded(text, "-._~");
    std::string result(searchTemplate);
    if (result.find("{q}") != std::string::npos) {
        Text::replaceAll(result, "{q}", encoded);
    } else {
        result += encoded;
    }
    return result;
}

std::optional<std::string> startupTarget(std::string_view given)
{
    std::string_view text = Text::trimmed(given);
    if (text.empty()) {
        return std::nullopt;
    }
    if (auto alias = internalAlias(text)) {
        return alias;
    }
    if (auto found = scheme(text)) {
        if (contains(navigableSchemes, *found) && !contains(blockedSchemes, *found)) {
            return std::string(text);
        }
        return std::nullopt;
    }
    if (looksLikeHost(text)) {
        return hostPrefix(text) + std::string(text);
    }
    return std::nullopt;
}

std::optional<std::string> origin(std::string_view url)
{
    auto parts = UrlComponents::parse(url);
    if (!parts || !parts->host || parts->host->empty()) {
        return std::nullopt;
    }
    std::string lowerScheme = Text::asciiLowercased(parts->scheme);
    if (lowerScheme != "http" && lowerScheme != "https") {
        return std::nullopt;
    }
    std::string result = lowerScheme + "://" + std::string(*parts->host);
    if (parts->port) {
        result += ':';
        result += std::to_string(*parts->port);
    }
    return result;
}

std::string host(std::string_view url)
{
    auto parts = UrlComponents::parse(url);
    if (!parts || !parts->host) {
        return {};
    }
    return std::string(withoutLeadingWww(*parts->host));
}

std::optional<std::string> site(std::optional<std::string_view> url)
{
    if (!url) {
        return std::nullopt;
    }
    auto parts = UrlComponents::parse(*url);
    if (!parts || !parts->host) {
        return std::nullopt;
    }
    if (!Text::asciiEqualsIgnoringCase(parts->scheme, "http")
        && !Text::asciiEqualsIgnoringCase(parts->scheme, "https")) {
        return std::nullopt;
    }
    std::string key = Text::lowercased(*parts->host);
    if (key.starts_with("www.")) {
        key.erase(0, 4);
    }
    if (key.empty()) {
        return std::nullopt;
    }
    return key;
}

bool isBlank(std::optional<std::string_view> url)
{
    if (!url) {
        return true;
    }
    std::string_view text = Text::trimmed(*url);
    return text.empty() || Text::asciiEqualsIgnoringCase(text, "about:blank");
}

} // namespace velder::UrlHelper
