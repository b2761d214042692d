// Text typed into the address bar or handed to Velder at start, and addresses of pages.
// - typed text goes nowhere only when it is blank or names a blocked scheme; where it goes never has a
//   blocked scheme, has no blank at either end, and typing that address again goes to the same place;
// - a start address is what the address bar would do with the same text, and its scheme is navigable;
// - an alias is an internal page's address;
// - an origin is "http(s)://host[:port]" with a host and a canonical port, and is its own origin;
// - a site key is lower case, and there is one wherever there is an origin (but for a bare "www." host).

#include "FuzzCheck.h"

#include "core/InternalRoute.h"
#include "core/Text.h"
#include "core/UrlComponents.h"
#include "core/UrlHelper.h"

#include <algorithm>
#include <array>

using namespace velder;
using fuzz::check;

namespace {

constexpr std::string_view searchTemplate = "https://duckduckgo.com/?q={q}";
constexpr std::array<std::string_view, 5> blocked { "javascript", "data", "file", "vbscript", "blob" };
constexpr std::array<std::string_view, 6> navigable { "http", "https", "velder", "about", "chrome", "view-source" };

template<size_t N> bool among(const std::array<std::string_view, N>& set, const std::optional<std::string>& value)
{
    return value && std::find(set.begin(), set.end(), *value) != set.end();
}

void checkTyped(std::string_view typed)
{
    auto target = UrlHelper::navigationTarget(typed, searchTemplate);
    std::string_view trimmed = Text::trimmed(typed);
    if (!target) {
        check(trimmed.empty() || among(blocked, UrlHelper::scheme(trimmed)), "only blank text or a blocked scheme");
        check(!UrlHelper::startupTarget(typed), "no start address where typing goes nowhere");
        return;
    }
    auto scheme = UrlHelper::scheme(*target);
    check(scheme && !among(blocked, scheme), "a target has a scheme, never a blocked one");
    check(Text::trimmed(*target) == *target, "a target has no blank at either end");
    check(UrlHelper::navigationTarget(*target, searchTemplate) == target, "typing the target again goes there");

    if (auto start = UrlHelper::startupTarget(typed)) {
        check(*start == *target, "a start address goes where typing goes");
        check(among(navigable, UrlHelper::scheme(*start)), "a start address has a navigable scheme");
    }
    if (auto alias = UrlHelper::internalAlias(typed)) {
        check(*alias == *target && InternalRoutes::parse(*alias).has_value(), "an alias is an internal page");
    }
}

bool isCanonicalPort(std::string_view port)
{
    if (port.empty() || port.size() > 5 || (port.size() > 1 && port[0] == '0')) {
        return false;
    }
    return std::all_of(port.begin(), port.end(), [](char c) { return c >= '0' && c <= '9'; })
        && std::stoi(std::string(port)) <= 65535;
}

void checkOrigin(std::string_view url)
{
    auto origin = UrlHelper::origin(url);
    auto site = UrlHelper::site(url);
    if (site) {
        check(!site->empty() && Text::lowercased(*site) == *site, "a site key is lower case and not empty");
    }
    if (!origin) {
        return;
    }
    std::string_view rest = *origin;
    check(rest.starts_with("http://") || rest.starts_with("https://"), "an origin's scheme is http or https");
    rest.remove_prefix(rest.find("//") + 2);
    auto parts = UrlComponents::parse(*origin);
    check(parts && parts->host && !parts->host->empty(), "an origin has a host");
    std::string_view host = *parts->host;
    check(rest.starts_with(host), "the host follows the scheme");
    std::string_view after = rest.substr(host.size());
    check(after.empty() || (after[0] == ':' && isCanonicalPort(after.substr(1))), "only a port follows the host");
    check(host.find_first_of("/?#@ ") == std::string_view::npos, "a host is one name");
    check(UrlHelper::origin(*origin) == origin, "an origin is its own origin");
    std::string lowerHost = Text::lowercased(host);
    check(site || lowerHost == "www.", "an origin's address has a site key");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view input = fuzz::text(data, size);
    checkTyped(input);
    checkOrigin(input);
    UrlHelper::host(input);
    UrlHelper::isBlank(input);
    return 0;
}
