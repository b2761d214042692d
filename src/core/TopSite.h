#pragma once

#include "core/Date.h"

#include <cstdint>
#include <optional>
#include <string>

namespace velder {

// One tile of the dashboard, worked out from the history and the pins on each render; never stored.
struct TopSite {
    std::string site; // the site key: lower-case host without one leading "www."
    std::string url; // what the tile opens
    std::optional<std::string> title;
    std::int64_t visits = 0; // summed over the site's entries; 0 for a pin without history
    Date lastVisitUtc;
    bool pinned = false;

    bool operator==(const TopSite&) const = default;
};

} // namespace velder
