#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velder {

// The pure URL logic of the whole program: what typed text means, and small questions about addresses.
namespace UrlHelper {

// The lower-cased text before the first ":", if it forms a scheme (a letter, then letters, digits,
// "+", "-", "."). So "localhost:3000" has the scheme "localhost".
std::optional<std::string> scheme(std::string_view text);

// "about:settings" and friends: trimmed, lower-cased, trailing "/" dropped, looked up.
std::optional<std::string> internalAlias(std::string_view text);

// What the address bar does with typed text: an alias, an address, or a search through the template.
// Nothing for blank text or a blocked scheme (javascript, data, file, vbscript, blob).
std::optional<std::string> navigationTarget(std::string_view typed, std::string_view searchTemplate);

// The same for a URL handed to Velder at start, but never a search and only navigable schemes.
std::optional<std::string> startupTarget(std::string_view text);

// "scheme://host[:port]" for http and https addresses with a host; the host as parsed, the port only
// when stated. Nothing otherwise.
std::optional<std::string> origin(std::string_view url);

// The host without one leading "www.", or empty.
std::string host(std::string_view url);

// The site key: lower-cased host without one leading "www.", for http and https only.
std::optional<std::string> site(std::optional<std::string_view> url);

// True for a missing, blank or "about:blank" (any case) address.
bool isBlank(std::optional<std::string_view> url);

} // namespace UrlHelper

} // namespace velder
