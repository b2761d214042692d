#pragma once

#include "core/Date.h"
#include "core/TopSite.h"

#include <cstdint>
#include <string>

namespace velder {

// velder://dashboard/: a tile for each top site, with pin, unpin and ignore links back to the router.
namespace DashboardPage {

std::string render();
std::string tile(const TopSite& site, Date now);
// "Pinned" for a pin without visits, else "3 visits · 2 hr ago".
std::string counts(const TopSite& site, Date now);
// "just now", "5 min ago", "3 hr ago", "2 d ago", or the local date "yyyy-MM-dd" after a week.
std::string ago(Date then, Date now);

} // namespace DashboardPage

} // namespace velder
