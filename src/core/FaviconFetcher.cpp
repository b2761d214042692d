#include "core/FaviconFetcher.h"

#include "core/FaviconStore.h"
#include "core/Text.h"
#include "core/UrlComponents.h"
#include "core/UrlHelper.h"

#include <set>

namespace velder::FaviconFetcher {

namespace {

// Main thread only, for the life of the process.
std::set<std::string>& inFlight()
{
    static std::set<std::string> sites;
    return sites;
}

std::set<std::string>& failed()
{
    static std::set<std::string> sites;
    return sites;
}

// The first address in the page's order that is a web address; no preference by size or type.
std::optional<std::string> candidate(const std::vector<std::string>& iconURLs)
{
    for (const auto& url : iconURLs) {
        auto parts = UrlComponents::parse(url);
        if (!parts) {
            continue;
        }
        std::string scheme = Text::asciiLowercased(parts->scheme);
        if (scheme == "http" || scheme == "https") {
            return url;
        }
    }
    return std::nullopt;
}

} // namespace

void fetch(IconSource& source, const std::string& pageURL, const std::vector<std::string>& iconURLs)
{
    if (iconURLs.empty()) {
        return;
    }
    auto site = UrlHelper::site(pageURL);
    if (!site || !FaviconStore::shared().needs(*site) || failed().contains(*site)) {
        return;
    }
    if (!inFlight().insert(*site).second) {
        return;
    }
    auto url = candidate(iconURLs);
    if (!url) {
        // Not a failure: a later report may name a usable address.
        inFlight().erase(*site);
        return;
    }
    source.fetchIcon(*url, FaviconStore::maxBytes, [site = *site](std::optional<std::vector<std::uint8_t>> bytes) {
        inFlight().erase(site);
        if (bytes && FaviconStore::shared().store(*bytes, site)) {
            return;
        }
        failed().insert(site);
    });
}

void resetForTesting()
{
    inFlight().clear();
    failed().clear();
}

} // namespace velder::FaviconFetcher
