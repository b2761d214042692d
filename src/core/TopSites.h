#pragma once

#include "core/TopSite.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velder {

// The dashboard's tiles: history grouped by site and ranked by frecency, with the user's pins first and
// the ignored sites left out. Pins and ignored sites live in the vault. Main thread.
namespace TopSites {

inline constexpr std::size_t maxTiles = 12;
inline constexpr std::size_t maxPins = 24;
inline constexpr std::size_t maxIgnored = 200;
inline constexpr std::size_t maxSiteLength = 253;

// Pins in pinning order, then ranked sites until the list holds 12 or more.
std::vector<TopSite> current();
// Every site of the history, best first: visits weighted by the age of the last visit.
std::vector<TopSite> fromHistory();

// Trimmed and lower-cased; nothing when empty or 254 characters or longer.
std::optional<std::string> normalise(std::optional<std::string_view> text);
// The frecency score of a site at `now`: visits times 4, 2, 1 or 0.5 by the days since the last visit.
double score(const TopSite& site, Date now);

// Only a site with history can be pinned; a 25th pin is refused. Pinning takes the site off the ignored list.
void pin(std::optional<std::string_view> site);
void unpin(std::optional<std::string_view> site);
// Removes the site's pin and keeps it off the dashboard (the oldest of 201 ignored sites is forgotten).
void ignore(std::optional<std::string_view> site);
void restoreIgnored();

} // namespace TopSites

} // namespace velder
