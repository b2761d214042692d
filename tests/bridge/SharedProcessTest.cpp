#include "BridgeTest.h"

#include "bridge/VLDPageProcess.h"
#include "bridge/VLDRequestContext.h"

namespace velder::test {

class SharedProcessTest : public BridgeTest { };

// Pages of one site share a web process, four to a process, and stay apart as pages: each has its own
// session storage and no opener. What a shared process costs shows when it ends: the pages in it go
// together, and the fifth page of the site and a page of no site are untouched.
TEST_F(SharedProcessTest, PagesOfOneSiteShareAProcessOfAtMostFour)
{
    m_server->route("/page", TestResponse::html(page("Page")));
    std::vector<std::shared_ptr<RecordingDelegate>> delegates;
    std::vector<std::shared_ptr<VLDBrowserView>> views;
    for (int i = 0; i < 6; ++i) {
        delegates.push_back(std::make_shared<RecordingDelegate>());
        std::string url = i < 5 ? m_server->url("/page?" + std::to_string(i)) : "about:blank";
        views.push_back(openLoaded(url, delegates.back()));
    }

    ASSERT_TRUE(
        waitForScriptValue(*views[0], "sessionStorage.setItem('k', 'first'), sessionStorage.getItem('k')", "first"));
    EXPECT_TRUE(waitForScriptValue(
        *views[1], "String(sessionStorage.getItem('k')) + ' ' + String(window.opener)", "null null"));

    webkit_web_view_terminate_web_process(webViewOf(*views[0]));
    ASSERT_TRUE(runMainLoopUntil([&] {
        return std::ranges::all_of(
            delegates.begin(), delegates.begin() + 4, [](auto& d) { return !d->terminations.empty(); });
    }));
    EXPECT_TRUE(delegates[4]->terminations.empty());
    EXPECT_TRUE(delegates[5]->terminations.empty());
    EXPECT_TRUE(waitForScriptValue(*views[4], "document.title", "Page"));

    // A reload brings an ended page back.
    ASSERT_TRUE(loadAndWait(*views[1], *delegates[1], m_server->url("/page?1")));
    EXPECT_TRUE(waitForScriptValue(*views[1], "document.title", "Page"));
}

// The process started before the first window serves the first page of the persistent session, and its
// placeholder page goes once that page has committed; a private page never takes it, and an untaken one goes
// when the first windows are open.
TEST_F(SharedProcessTest, TheEarlyProcessServesTheFirstPageAndItsPlaceholderGoes)
{
    m_server->route("/page", TestResponse::html(page("Page")));
    VLDBrowserView::startWebProcessEarly();
    GtkWidget* placeholder = VLDPageProcess::earlyView();
    ASSERT_TRUE(placeholder);

    auto privateView = openLoaded(m_server->url("/page?private"), delegate, VLDRequestContext::inMemoryContext());
    EXPECT_EQ(VLDPageProcess::earlyView(), placeholder) << "a private page is in a session of its own";

    auto view = openLoaded(m_server->url("/page"), std::make_shared<RecordingDelegate>());
    EXPECT_TRUE(waitForScriptValue(*view, "document.title", "Page"));
    EXPECT_FALSE(VLDPageProcess::earlyView()) << "the placeholder page is gone once the first page committed";

    VLDBrowserView::startWebProcessEarly();
    VLDBrowserView::releaseUnclaimedWebProcess();
    EXPECT_FALSE(VLDPageProcess::earlyView());
}

} // namespace velder::test
