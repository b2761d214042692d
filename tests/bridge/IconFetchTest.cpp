#include "BridgeTest.h"

#include "bridge/VLDMainThread.h"

namespace velder::test {

namespace {

struct Outcome {
    int completions = 0;
    bool onMainThread = true;
    std::optional<std::vector<std::uint8_t>> bytes;
};

std::string bytesOf(size_t size)
{
    std::string body(size, '\0');
    for (size_t i = 0; i < size; ++i) {
        body[i] = static_cast<char>(i * 7);
    }
    return body;
}

std::function<void(std::optional<std::vector<std::uint8_t>>)> recorder(const std::shared_ptr<Outcome>& outcome)
{
    return [outcome](std::optional<std::vector<std::uint8_t>> bytes) {
        ++outcome->completions;
        outcome->onMainThread = outcome->onMainThread && VLDIsMainThread();
        outcome->bytes = std::move(bytes);
    };
}

} // namespace

class IconFetchTest : public BridgeTest { };

// An icon comes through the page's own session, with its cookies, and only as a 200 answer within the
// limit; the completion runs once, on the main thread, never inside the call.
TEST_F(IconFetchTest, FetchesThroughThePagesSession)
{
    const size_t limit = 65536;
    m_server->route("/page", TestResponse { 200, "text/html", "<title>Icons</title>", { { "Set-Cookie", "s=1" } } });
    m_server->route("/icon.png", [](const TestRequest& request) {
        if (request.header("cookie") != "s=1") {
            return TestResponse { 403, "text/plain", "no cookie" };
        }
        return TestResponse { 200, "image/png", bytesOf(1000) };
    });
    m_server->route("/exact.png", TestResponse { 200, "image/png", bytesOf(limit) });
    m_server->route("/over.png", TestResponse { 200, "image/png", bytesOf(limit + 1) });
    m_server->route("/empty.png", TestResponse { 200, "image/png", "" });
    auto view = openLoaded(m_server->url("/page"), delegate);

    struct Row {
        const char* name;
        std::string path;
        std::optional<size_t> size;
    };
    const Row rows[] = {
        { "with the page's cookie", "/icon.png", 1000 },
        { "exactly the limit", "/exact.png", limit },
        { "one byte over", "/over.png", std::nullopt },
        { "empty", "/empty.png", std::nullopt },
        { "not found", "/missing.png", std::nullopt },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        auto outcome = std::make_shared<Outcome>();
        view->fetchIconAtURL(m_server->url(row.path), limit, recorder(outcome));
        EXPECT_EQ(outcome->completions, 0);
        ASSERT_TRUE(runMainLoopUntil([&] { return outcome->completions > 0; }));
        runMainLoopFor(100ms);
        EXPECT_EQ(outcome->completions, 1);
        EXPECT_TRUE(outcome->onMainThread);
        if (row.size) {
            ASSERT_TRUE(outcome->bytes.has_value());
            std::string expected = bytesOf(*row.size);
            EXPECT_EQ(std::string(outcome->bytes->begin(), outcome->bytes->end()), expected);
        } else {
            EXPECT_FALSE(outcome->bytes.has_value());
        }
    }
    // An icon fetch is no download of the owner's (the owner is asked about each one first).
    EXPECT_TRUE(delegate->downloadQuestions.empty());
}

TEST_F(IconFetchTest, AViewWithoutABrowserCompletesWithNothing)
{
    auto view = VLDBrowserView::create(m_server->url("/page"));
    m_views.push_back(view);
    auto outcome = std::make_shared<Outcome>();
    view->fetchIconAtURL(m_server->url("/icon.png"), 65536, recorder(outcome));
    EXPECT_EQ(outcome->completions, 0);
    ASSERT_TRUE(runMainLoopUntil([&] { return outcome->completions > 0; }));
    EXPECT_EQ(outcome->completions, 1);
    EXPECT_FALSE(outcome->bytes.has_value());
    EXPECT_TRUE(m_server->requests().empty());
}

} // namespace velder::test
