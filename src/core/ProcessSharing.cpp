#include "core/ProcessSharing.h"

#include "core/Text.h"
#include "core/UrlComponents.h"

#include <map>

namespace velder {

std::string ProcessSharing::siteOf(std::string_view url)
{
    auto components = UrlComponents::parse(url);
    if (!components || components->scheme.empty() || !components->host || components->host->empty()) {
        return {};
    }
    return Text::asciiLowercased(components->scheme) + "://" + Text::asciiLowercased(*components->host);
}

std::optional<std::uint64_t> ProcessSharing::relatedPageFor(std::string_view url, const std::vector<Page>& pages)
{
    std::string site = siteOf(url);
    if (site.empty()) {
        return std::nullopt;
    }
    std::map<std::uint64_t, std::size_t> groupSizes;
    for (const Page& page : pages) {
        ++groupSizes[page.processGroup];
    }
    for (const Page& page : pages) {
        if (groupSizes[page.processGroup] < pagesPerProcess && siteOf(page.url) == site) {
            return page.identifier;
        }
    }
    return std::nullopt;
}

} // namespace velder
