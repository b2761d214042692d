#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace velder {

// The velder:// pages.
enum class InternalRoute { dashboard, about, settings, history };

namespace InternalRoutes {

// "dashboard", "about", "settings", "history".
std::string_view rawValue(InternalRoute route);
std::optional<InternalRoute> fromRawValue(std::string_view text);
// "velder://" + raw value + "/".
std::string url(InternalRoute route);
// "Dashboard", "About", "Settings", "History".
std::string_view label(InternalRoute route);

// The route and the query of a velder:// address: "VELDER://Dashboard/" is the dashboard, "?" inside a
// fragment is no query, and "velder://settings/x" is no route at all.
std::optional<std::pair<InternalRoute, std::optional<std::string>>> parse(std::string_view url);

} // namespace InternalRoutes

} // namespace velder
