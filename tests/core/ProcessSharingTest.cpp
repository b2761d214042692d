#include "core/ProcessSharing.h"

#include <gtest/gtest.h>

namespace velder::test {

using Page = ProcessSharing::Page;

TEST(ProcessSharingTest, ANewPageJoinsAPageOfItsSiteWhoseProcessHasRoom)
{
    const std::vector<Page> fullGroup { { 1, "https://news.example/a", 1 }, { 2, "https://news.example/b", 1 },
        { 3, "https://news.example/c", 1 }, { 4, "https://news.example/d", 1 } };
    std::vector<Page> fullGroupAndOneAlone = fullGroup;
    fullGroupAndOneAlone.push_back({ 5, "https://news.example/e", 5 });

    struct Row {
        const char* name;
        std::string url;
        std::vector<Page> pages;
        std::optional<std::uint64_t> expected;
    };
    const std::vector<Row> rows {
        { "no other page", "https://news.example/", {}, std::nullopt },
        { "same host, other path and port", "https://news.example:8443/x?q", { { 7, "https://news.example/", 7 } }, 7 },
        { "host and scheme compared without case", "HTTPS://News.Example/", { { 7, "https://news.example/", 7 } }, 7 },
        { "another host", "https://mail.example/", { { 7, "https://news.example/", 7 } }, std::nullopt },
        { "another scheme", "http://news.example/", { { 7, "https://news.example/", 7 } }, std::nullopt },
        { "internal pages share among themselves", "velder://dashboard", { { 7, "velder://dashboard", 7 } }, 7 },
        { "an address without a host never shares", "file:///tmp/a.html", { { 7, "file:///tmp/b.html", 7 } },
            std::nullopt },
        { "a page still without an address", "https://news.example/", { { 7, "", 7 } }, std::nullopt },
        { "a full process takes no more", "https://news.example/f", fullGroup, std::nullopt },
        { "the site's process with room", "https://news.example/f", fullGroupAndOneAlone, 5 },
        { "room counts pages of every site", "https://news.example/",
            { { 1, "https://a.example/", 1 }, { 2, "https://b.example/", 1 }, { 3, "https://c.example/", 1 },
                { 4, "https://news.example/", 1 } },
            std::nullopt },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(ProcessSharing::relatedPageFor(row.url, row.pages), row.expected);
    }
}

} // namespace velder::test
