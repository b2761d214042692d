#include "core/InternalRoute.h"

#include "core/Text.h"

#include <array>

namespace velder::InternalRoutes {

namespace {

constexpr std::array<InternalRoute, 4> allRoutes { InternalRoute::dashboard, InternalRoute::about,
    InternalRoute::settings, InternalRoute::history };

} // namespace

std::string_view rawValue(InternalRoute route)
{
    switch (route) {
    case InternalRoute::dashboard:
        return "dashboard";
    case InternalRoute::about:
        return "about";
    case InternalRoute::settings:
        return "settings";
    case InternalRoute::history:
        return "history";
    }
    return {};
}

std::optional<InternalRoute> fromRawValue(std::string_view text)
{
    for (auto route : allRoutes) {
        if (rawValue(route) == text) {
            return route;
        }
    }
    return std::nullopt;
}

std::string url(InternalRoute route)
{
    return "velder://" + std::string(rawValue(route)) + "/";
}

std::string_view label(InternalRoute route)
{
    switch (route) {
    case InternalRoute::dashboard:
        return "Dashboard";
    case InternalRoute::about:
        return "About";
    case InternalRoute::settings:
        return "Settings";
    case InternalRoute::history:
        return "History";
    }
    return {};
}

std::optional<std::pair<InternalRoute, std::optional<std::string>>> parse(std::string_view url)
{
    constexpr std::string_view prefix = "velder://";
    if (!Text::asciiStartsWithIgnoringCase(url, prefix)) {
        return std::nullopt;
    }
    std::string_view rest = url.substr(prefix.size());
    // The fragment goes first, so that a "?" inside it is no query.
    rest = rest.substr(0, rest.find('#'));
    std::optional<std::string> query;
    if (size_t mark = rest.find('?'); mark != std::string_view::npos) {
        query = std::string(rest.substr(mark + 1));
        rest = rest.substr(0, mark);
    }
    size_t slash = rest.find('/');
    std::string first = Text::lowercased(rest.substr(0, slash));
    if (first.empty()) {
        return std::nullopt;
    }
    if (slash != std::string_view::npos && rest.find_first_not_of('/', slash) != std::string_view::npos) {
        return std::nullopt;
    }
    auto route = fromRawValue(first);
    if (!route) {
        return std::nullopt;
    }
    return std::pair { *route, std::move(query) };
}

} // namespace velder::InternalRoutes
