#pragma once

#include "core/IconSource.h"

#include <string>
#include <vector>

namespace velder {

// Decides whether and what to fetch when an ordinary tab reports its icon URLs: one GET per site at most,
// for sites the favicon store needs, never again this run for a site that failed. Main thread only.
namespace FaviconFetcher {

void fetch(IconSource& source, const std::string& pageURL, const std::vector<std::string>& iconURLs);

// Forgets the in-flight and failed sets (tests).
void resetForTesting();

} // namespace FaviconFetcher

} // namespace velder
