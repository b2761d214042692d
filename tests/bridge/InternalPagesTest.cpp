#include "BridgeTest.h"

#include "bridge/VLDInternalPages.h"
#include "core/ContentPolicy.h"

#include <algorithm>

namespace velder::test {

namespace {

const char* bigStyle = "style='display:block;font-size:40px;width:500px;height:60px'";

} // namespace

// The velder:// source of these tests: a few pages, an action that redirects, and nothing else.
class InternalPagesTest : public BridgeTest {
protected:
    struct Call {
        std::string url;
        VLDBrowserView* view;
    };

    void SetUp() override
    {
        BridgeTest::SetUp();
        ASSERT_TRUE(VLDInternalPages::registerSource([this](const std::string& url, VLDBrowserView* view) {
            m_calls.push_back({ url, view });
            return respond(url);
        }));
    }

    std::optional<VLDInternalPageResponse> respond(const std::string& url)
    {
        if (url == "velder://test/") {
            return VLDInternalPageResponse::html(
                std::string("<title>Internal</title><a id=next ") + bigStyle + " href='velder://test/second'>next</a>");
        }
        if (url == "velder://test/scripted") {
            return VLDInternalPageResponse::html("<title>Scripted</title><script>document.title = 'ran';</script>");
        }
        if (url == "velder://test/second") {
            return VLDInternalPageResponse::html("<title>Second</title>");
        }
        if (url == "velder://test/plain") {
            return VLDInternalPageResponse { "<title>Plain</title>", "text/plain", 200, {} };
        }
        if (url.starts_with("velder://test/act")) {
            return VLDInternalPageResponse::redirectTo("velder://test/done");
        }
        if (url == "velder://test/done") {
            return VLDInternalPageResponse::html("<title>Done</title>");
        }
        return std::nullopt;
    }

    int callsOf(const std::string& prefix) const
    {
        return static_cast<int>(std::count_if(
            m_calls.begin(), m_calls.end(), [&](const Call& call) { return call.url.starts_with(prefix); }));
    }

    // Fetches the URL from the page the view shows, in a script world of the test's own (which the page's
    // policy doesn't bind), and gives the status and the headers the engine saw, as "status|name: value|...".
    std::string fetchFromPage(VLDBrowserView& view, const std::string& url)
    {
        return callInWorld(view,
            "return fetch('" + url
                + "').then(r => r.status + '|' + ['content-type', 'cache-control', 'content-security-policy']"
                  ".map(n => n + ': ' + r.headers.get(n)).join('|'));",
            "velder-tests");
    }

    std::vector<Call> m_calls;
};

// Pages come with their status and Velder's three headers, whatever their type; an unknown route is a 404
// with neither body nor headers. The source is asked with the requesting view.
TEST_F(InternalPagesTest, PagesAndTheirHeaders)
{
    auto view = openView("velder://test/", delegate);
    ASSERT_TRUE(
        runMainLoopUntil([&] { return delegate->isIdleAt("velder://test/") && view->pageTitle() == "Internal"; }));
    ASSERT_EQ(m_calls.size(), 1u);

    std::string headers = "content-type: text/html; charset=utf-8|cache-control: no-store|content-security-policy: "
        + ContentPolicy::internalPages();
    struct Row {
        const char* name;
        std::string url;
        std::string expected;
    };
    const Row rows[] = {
        { "a page", "velder://test/second", "200|" + headers },
        { "a page of another type", "velder://test/plain", "200|" + headers },
        { "an unknown route", "velder://test/missing",
            "404|content-type: null|cache-control: null|"
            "content-security-policy: null" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(fetchFromPage(*view, row.url), row.expected);
    }
    // The policy is in force: the page's own script doesn't run under it.
    ASSERT_TRUE(loadAndWait(*view, *delegate, "velder://test/scripted"));
    EXPECT_EQ(evaluate(*view, "document.title"), "Scripted");
    EXPECT_TRUE(delegate->failures.empty());
    EXPECT_TRUE(std::all_of(m_calls.begin(), m_calls.end(), [&](const Call& call) { return call.view == view.get(); }));
}

// A redirect carries the view on to its target; the action's address never commits, so neither the back
// list nor a reload can repeat it.
TEST_F(InternalPagesTest, RedirectsAreFollowedWithoutCommittingTheAction)
{
    auto view = openLoaded("velder://test/", delegate);

    view->loadURL("velder://test/act?clear=1");
    ASSERT_TRUE(
        runMainLoopUntil([&] { return delegate->isIdleAt("velder://test/done") && view->pageTitle() == "Done"; }));
    EXPECT_EQ(callsOf("velder://test/act"), 1);
    EXPECT_TRUE(delegate->failures.empty());
    EXPECT_FALSE(delegate->sawAddress("velder://test/act?clear=1"));
    WebKitBackForwardList* list = webkit_web_view_get_back_forward_list(webViewOf(*view));
    ASSERT_NE(webkit_back_forward_list_get_back_item(list), nullptr);
    EXPECT_STREQ(webkit_back_forward_list_item_get_uri(webkit_back_forward_list_get_back_item(list)), "velder://test/");

    size_t callsBefore = m_calls.size();
    view->reload();
    ASSERT_TRUE(runMainLoopUntil([&] { return m_calls.size() > callsBefore && !view->isLoading(); }));
    EXPECT_EQ(m_calls.back().url, "velder://test/done");
    EXPECT_EQ(callsOf("velder://test/act"), 1);

    // Links between internal pages work.
    view->goBack();
    ASSERT_TRUE(
        runMainLoopUntil([&] { return delegate->isIdleAt("velder://test/") && view->pageTitle() == "Internal"; }));
    if (RealInput::available()) {
        // A new tab for a velder:// link is the owner's to decide, like any other.
        ASSERT_TRUE(clickElement(*view, "#next", 2));
        ASSERT_TRUE(runMainLoopUntil([&] { return !delegate->newTabs.empty(); }));
        EXPECT_EQ(delegate->newTabs[0].url, "velder://test/second");
        EXPECT_FALSE(delegate->newTabs[0].foreground);
        ASSERT_TRUE(clickElement(*view, "#next"));
        EXPECT_TRUE(runMainLoopUntil([&] { return delegate->isIdleAt("velder://test/second"); }));
    }
}

} // namespace velder::test
