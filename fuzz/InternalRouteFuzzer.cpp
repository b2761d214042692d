// Any address, as a page or the address bar may hand it to the velder:// router.
// - it names a route exactly when, after "velder://" in any case and without its fragment and query, it is
//   that route's name in any ASCII case followed by nothing but "/"s (no other text lower-cases to a name);
// - the query is the text between the first "?" and the fragment;
// - a route's own address, with a query added, parses back to the route and that query.

#include "FuzzCheck.h"

#include "core/InternalRoute.h"
#include "core/Text.h"

using namespace velder;
using fuzz::check;

namespace {

struct Expected {
    std::optional<InternalRoute> route;
    std::optional<std::string> query;
};

Expected expected(std::string_view url)
{
    constexpr std::string_view prefix = "velder://";
    if (!Text::asciiStartsWithIgnoringCase(url, prefix)) {
        return {};
    }
    std::string_view rest = url.substr(prefix.size());
    rest = rest.substr(0, rest.find('#'));
    Expected result;
    if (size_t mark = rest.find('?'); mark != std::string_view::npos) {
        result.query = std::string(rest.substr(mark + 1));
        rest = rest.substr(0, mark);
    }
    while (rest.ends_with('/')) {
        rest.remove_suffix(1);
    }
    for (auto route :
        { InternalRoute::dashboard, InternalRoute::about, InternalRoute::settings, InternalRoute::history }) {
        if (Text::asciiEqualsIgnoringCase(rest, InternalRoutes::rawValue(route))) {
            result.route = route;
        }
    }
    return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string_view url = fuzz::text(data, size);
    auto parsed = InternalRoutes::parse(url);
    Expected wanted = expected(url);
    check(parsed.has_value() == wanted.route.has_value(), "a route is found exactly where one is named");
    if (!parsed || !wanted.route) {
        return 0;
    }
    check(parsed->first == *wanted.route, "the route named is the one found");
    check(parsed->second == wanted.query, "the query is the text between \"?\" and the fragment");

    std::string query = parsed->second.value_or("no-query");
    std::string own = InternalRoutes::url(parsed->first) + "?" + query;
    auto again = InternalRoutes::parse(own);
    check(again && again->first == parsed->first && again->second == query, "a route's own address parses back");
    check(InternalRoutes::fromRawValue(InternalRoutes::rawValue(parsed->first)) == parsed->first, "raw values");
    return 0;
}
