#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velder {

// Which open page a new tab's page joins in its web process. WebKit gives every page a process of its own,
// about 35 MiB each, unless the page is created related to another. Tabs of one site share: a new page
// joins a page that shows the same site, as long as that process holds fewer than `pagesPerProcess` pages,
// so a crash or a hung script takes down a few tabs, not all of a site's. Different sites never share at
// the start, and a page that later navigates to another site is moved by WebKit to a process of its own.
struct ProcessSharing {
    // An open page of the same session: its bridge identifier, its address, and the page whose process it
    // was created in (its own identifier when it was created alone).
    struct Page {
        std::uint64_t identifier = 0;
        std::string url;
        std::uint64_t processGroup = 0;
    };

    static constexpr std::size_t pagesPerProcess = 4;

    // The page that a new page for `url` should be created related to, or nothing for a process of its own.
    static std::optional<std::uint64_t> relatedPageFor(std::string_view url, const std::vector<Page>& pages);

    // "scheme://host" in lower case, or empty for an address without a host (file:, data:, about:).
    static std::string siteOf(std::string_view url);
};

} // namespace velder
