#include "core/FaviconFetcher.h"

#include "support/ScopedStores.h"

#include "CoreTestSupport.h"

#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;

namespace {

using Bytes = std::vector<std::uint8_t>;
using Completion = std::function<void(std::optional<Bytes>)>;

// Records each fetch and keeps its completion for the test to run.
class FakeIconSource : public IconSource {
public:
    void fetchIcon(const std::string& url, std::uint64_t maxBytes, Completion completion) override
    {
        requests.push_back(url);
        limits.push_back(maxBytes);
        pending.push_back(std::move(completion));
    }
    void answer(size_t index, std::optional<Bytes> bytes) { pending.at(index)(std::move(bytes)); }

    std::vector<std::string> requests;
    std::vector<std::uint64_t> limits;
    std::vector<Completion> pending;
};

class FaviconFetcherTest : public testing::Test {
protected:
    void SetUp() override { FaviconFetcher::resetForTesting(); }
    void TearDown() override { FaviconFetcher::resetForTesting(); }

    ScopedStores stores;
    FakeIconSource source;
};

} // namespace

TEST_F(FaviconFetcherTest, ChoosesTheFirstWebAddressInOrder)
{
    struct Case {
        const char* page;
        std::vector<std::string> icons;
        std::optional<std::string> fetched;
    };
    for (const Case& c : std::vector<Case> {
             { "https://a.example/", { "https://a.example/big.png", "https://a.example/small.ico" },
                 "https://a.example/big.png" },
             { "https://b.example/",
                 { "data:image/png;base64,iVBO", "javascript:x", "HTTP://cdn.example/b.ico", "https://b.example/i" },
                 "HTTP://cdn.example/b.ico" },
             { "https://c.example/", { "https://c ex/x.ico", "http://c.example/ok.ico" }, "http://c.example/ok.ico" },
             { "https://d.example/", { "data:image/png;base64,iVBO", "/relative.ico" }, std::nullopt },
             { "https://e.example/", {}, std::nullopt },
             { "file:///home/x.html", { "https://e.example/x.ico" }, std::nullopt },
             { "about:blank", { "https://e.example/x.ico" }, std::nullopt },
         }) {
        SCOPED_TRACE(c.page);
        source.requests.clear();
        FaviconFetcher::fetch(source, c.page, c.icons);
        if (c.fetched) {
            ASSERT_EQ(source.requests.size(), 1u);
            EXPECT_EQ(source.requests[0], *c.fetched);
            EXPECT_EQ(source.limits.back(), 65536u);
        } else {
            EXPECT_TRUE(source.requests.empty());
        }
    }
    FaviconFetcher::fetch(source, "https://d.example/", { "https://d.example/favicon.ico" });
    EXPECT_EQ(source.requests, std::vector<std::string> { "https://d.example/favicon.ico" })
        << "a page without a candidate is no failure of its site";
}

TEST_F(FaviconFetcherTest, OneFetchPerSiteAtATime)
{
    FaviconFetcher::fetch(source, "https://www.a.example/x", { "https://a.example/1.ico" });
    FaviconFetcher::fetch(source, "http://a.example:8080/y", { "https://a.example/2.ico" });
    ASSERT_EQ(source.requests.size(), 1u) << "two tabs of one site lead to one fetch";
    source.answer(0, pngSignature);
    EXPECT_EQ(stores.favicons().dataUri("a.example"), "data:image/png;base64,iVBORw0KGgo=");
    FaviconFetcher::fetch(source, "https://a.example/", { "https://a.example/3.ico" });
    EXPECT_EQ(source.requests.size(), 1u) << "a fresh icon needs no fetch";
}

TEST_F(FaviconFetcherTest, AFailedSiteIsNotTriedAgainThisRun)
{
    struct Case {
        const char* site;
        std::optional<Bytes> answer;
    };
    for (const Case& c : std::vector<Case> {
             { "nothing.example", std::nullopt },
             { "svg.example", Bytes { '<', 's', 'v', 'g', '>' } },
             { "empty.example", Bytes {} },
         }) {
        SCOPED_TRACE(c.site);
        source.requests.clear();
        source.pending.clear();
        std::string page = std::string("https://") + c.site + "/";
        FaviconFetcher::fetch(source, page, { page + "a.ico", page + "b.ico" });
        ASSERT_EQ(source.requests.size(), 1u);
        source.answer(0, c.answer);
        EXPECT_EQ(stores.favicons().count(), 0u);
        FaviconFetcher::fetch(source, page, { page + "b.ico" });
        EXPECT_EQ(source.requests.size(), 1u) << "the other candidates aren't tried after a failure";
    }
    FaviconFetcher::resetForTesting();
    FaviconFetcher::fetch(source, "https://svg.example/", { "https://svg.example/c.ico" });
    EXPECT_EQ(source.requests.size(), 2u) << "the next launch tries again";
}
