#include "BridgeTest.h"

#include "bridge/VLDRequestContext.h"

#include <algorithm>
#include <cmath>

namespace velder::test {

class BrowserViewTest : public BridgeTest { };

// The browser comes with the first placement in a window (until then nothing is requested), takes the last URL
// and zoom given before it, and a second placement makes no second browser.
TEST_F(BrowserViewTest, BrowserIsCreatedOncePlacedInAWindowWithWhatWasGivenBefore)
{
    m_server->route("/first", TestResponse::html(page("First")));
    m_server->route("/second", TestResponse::html(page("Second")));
    auto view = VLDBrowserView::create(m_server->url("/first"));
    m_views.push_back(view);
    view->setDelegate(delegate);

    runMainLoopFor(300ms);
    EXPECT_FALSE(view->hasBrowser());
    EXPECT_TRUE(m_server->requests().empty());
    view->loadURL(m_server->url("/second"));
    view->loadURL("");
    view->setZoomLevel(2.0);
    view->goBack();
    view->findText("x", true, false, false);
    EXPECT_FALSE(view->hasBrowser());

    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_box_append(GTK_BOX(box), view->widget());
    GtkWidget* window = showInWindow(box);
    ASSERT_TRUE(view->hasBrowser());
    EXPECT_EQ(delegate->events, std::vector<std::string> { "created" });
    WebKitWebView* first = webViewOf(*view);
    EXPECT_NEAR(webkit_web_view_get_zoom_level(first), std::pow(1.2, 2.0), 1e-9);

    ASSERT_TRUE(runMainLoopUntil(
        [&] { return delegate->isIdleAt(m_server->url("/second")) && view->pageTitle() == "Second"; }));
    EXPECT_FALSE(m_server->received("/first"));
    EXPECT_EQ(view->currentURL(), m_server->url("/second"));
    EXPECT_TRUE(delegate->findResults.empty()) << "a find before the browser isn't remembered";

    // Out of the window and into another: still the same browser.
    g_object_ref(view->widget());
    gtk_box_remove(GTK_BOX(box), view->widget());
    gtk_window_destroy(GTK_WINDOW(window));
    m_windows.erase(std::find(m_windows.begin(), m_windows.end(), window));
    showInWindow(view->widget());
    g_object_unref(view->widget());
    EXPECT_EQ(webViewOf(*view), first);
    EXPECT_EQ(delegate->events, std::vector<std::string> { "created" });

    view->setZoomLevel(0.0);
    EXPECT_NEAR(webkit_web_view_get_zoom_level(first), 1.0, 1e-9);
}

// Address, title and loading state reach the delegate as the page loads, and the history buttons follow.
TEST_F(BrowserViewTest, ReportsAddressTitleAndLoadingState)
{
    m_server->route("/one", TestResponse::html(page("Page one")));
    m_server->route("/two", TestResponse::html(page("Page two")));
    auto view = openView(m_server->url("/one"), delegate);

    ASSERT_TRUE(
        runMainLoopUntil([&] { return delegate->isIdleAt(m_server->url("/one")) && view->pageTitle() == "Page one"; }));
    EXPECT_TRUE(std::ranges::count(delegate->loadingStates, true) > 0) << "the load was reported as it ran";
    EXPECT_FALSE(view->canGoBack());
    EXPECT_EQ(delegate->titles.back(), "Page one");

    ASSERT_TRUE(loadAndWait(*view, *delegate, m_server->url("/two")));
    ASSERT_TRUE(runMainLoopUntil([&] { return view->canGoBack() && view->pageTitle() == "Page two"; }));
    EXPECT_FALSE(view->canGoForward());
    EXPECT_EQ(view->currentURL(), m_server->url("/two"));

    view->goBack();
    ASSERT_TRUE(runMainLoopUntil([&] { return delegate->isIdleAt(m_server->url("/one")) && view->canGoForward(); }));
    EXPECT_EQ(delegate->titles.back(), "Page one");

    // A change within the document moves the address with no load.
    evaluate(*view, "history.pushState({}, '', '/one/moved'); 1");
    ASSERT_TRUE(runMainLoopUntil([&] { return view->currentURL() == m_server->url("/one/moved"); }));
    EXPECT_TRUE(delegate->failures.empty());
}

// Each in-memory context is a session of its own, sharing no cookies with another or with the persistent one,
// which keeps them on disk; clearing takes the session's cookies.
TEST_F(BrowserViewTest, CookiesStayInTheirSessionUntilCleared)
{
    m_server->route("/set", TestResponse { 200, "text/html", page("Set"), { { "Set-Cookie", "k=v; Max-Age=3600" } } });
    m_server->route("/check", TestResponse::html(page("Check")));
    auto cookieOfLastCheck = [&] {
        for (auto it = m_server->requests().rbegin(); it != m_server->requests().rend(); ++it) {
            if (it->path == "/check") {
                return it->header("cookie");
            }
        }
        return std::string("<none>");
    };
    auto context = VLDRequestContext::inMemoryContext();
    EXPECT_TRUE(context->isEphemeral());
    EXPECT_FALSE(VLDRequestContext::globalContext()->isEphemeral());
    auto view = openLoaded(m_server->url("/set"), delegate, context);
    ASSERT_TRUE(loadAndWait(*view, *delegate, m_server->url("/check")));
    EXPECT_EQ(cookieOfLastCheck(), "k=v");
    for (const auto& other : { VLDRequestContext::inMemoryContext(), VLDRequestContext::globalContext() }) {
        openLoaded(m_server->url("/check?other"), std::make_shared<RecordingDelegate>(), other);
        EXPECT_EQ(cookieOfLastCheck(), "");
    }

    auto persistentDelegate = std::make_shared<RecordingDelegate>();
    auto persistent = openLoaded(m_server->url("/set"), persistentDelegate);
    EXPECT_TRUE(
        runMainLoopUntil([&] { return fileExists(m_profile->root().file("data/Velder/engine/cookies.sqlite")); }));
    ASSERT_TRUE(loadAndWait(*persistent, *persistentDelegate, m_server->url("/check")));
    EXPECT_EQ(cookieOfLastCheck(), "k=v");
    persistent->clearCookiesAndCache();
    // The engine clears in the background: ask again until the cookie is gone, or time runs out.
    EXPECT_TRUE(runMainLoopUntil([&] {
        size_t before = m_server->requests().size();
        persistent->reloadIgnoringCache();
        runMainLoopUntil([&] { return m_server->requests().size() > before && !persistent->isLoading(); }, 2s);
        return cookieOfLastCheck().empty();
    }));
}

} // namespace velder::test
