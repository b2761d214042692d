#include "BridgeTest.h"

#include <algorithm>

namespace velder::test {

namespace {

const char* bigButton = "style='font-size:40px;width:400px;height:100px'";

} // namespace

class LifeSpanTest : public BridgeTest { };

// A page that opens a window on a click asks the owner for a host, and the popup loads there, in the
// opener's session; without a gesture, or with the owner's refusal, no popup comes. A popup that closes
// itself is torn down as a close the owner asked for, and the opener stays.
TEST_F(LifeSpanTest, PopupsBecomeHostViewsTheOwnerSupplies)
{
    SKIP_WITHOUT_REAL_INPUT();
    std::string opener = "<button id=open " + std::string(bigButton)
        + " onclick=\"window.open(window.target, '_blank')\">open</button>"
          "<script>window.target = '/refused'; window.open('/unasked', '_blank');</script>";
    m_server->route("/opener", TestResponse::html(page("Opener", opener)));
    m_server->route("/popup", TestResponse::html(page("Popup")));
    m_server->route("/refused", TestResponse::html(page("Refused")));
    m_server->route("/unasked", TestResponse::html(page("Unasked")));
    auto popupDelegate = std::make_shared<RecordingDelegate>();
    auto view = openLoaded(m_server->url("/opener"), delegate);

    // The owner refuses the first: nothing is loaded.
    ASSERT_TRUE(clickElement(*view, "#open"));
    ASSERT_TRUE(runMainLoopUntil([&] { return delegate->hasEvent("popup:" + m_server->url("/refused")); }));
    runMainLoopFor(200ms);
    EXPECT_FALSE(m_server->received("/refused"));
    EXPECT_FALSE(delegate->hasEvent("popup:" + m_server->url("/unasked"))) << "no popup without a gesture";

    std::shared_ptr<VLDBrowserView> host;
    bool gesture = false;
    delegate->popupHost = [&](const std::string&, bool isUserGesture) {
        gesture = isUserGesture;
        // A popup host of its own in a window, as the window layer makes one for a popup.
        host = VLDBrowserView::popupHostView();
        host->setDelegate(popupDelegate);
        m_views.push_back(host);
        showInWindow(host->widget());
        return host;
    };
    evaluate(*view, "window.target = '/popup'; 1");
    ASSERT_TRUE(clickElement(*view, "#open"));
    ASSERT_TRUE(runMainLoopUntil([&] { return host && popupDelegate->isIdleAt(m_server->url("/popup")); }));
    ASSERT_TRUE(runMainLoopUntil([&] { return host->pageTitle() == "Popup"; }));
    EXPECT_TRUE(gesture);
    EXPECT_TRUE(delegate->hasEvent("didCreatePopup:" + std::to_string(host->identifier())));
    EXPECT_EQ(
        webkit_web_view_get_network_session(webViewOf(*host)), webkit_web_view_get_network_session(webViewOf(*view)));
    EXPECT_FALSE(m_server->received("/unasked"));

    GtkWidget* engineView = GTK_WIDGET(webViewOf(*host));
    g_object_add_weak_pointer(G_OBJECT(engineView), reinterpret_cast<gpointer*>(&engineView));
    evaluate(*host, "window.close(); 1");
    ASSERT_TRUE(runMainLoopUntil([&] { return popupDelegate->hasEvent("destroy"); }));
    EXPECT_EQ(popupDelegate->events, (std::vector<std::string> { "created", "tearDown", "destroy" }));
    EXPECT_FALSE(host->hasBrowser());
    EXPECT_TRUE(runMainLoopUntil([&] { return engineView == nullptr; })) << "the popup's engine view outlived it";
    EXPECT_TRUE(view->hasBrowser());
}

// requestClose runs the page's unload handlers; the owner hears the two steps in order, the browser goes,
// and the page really ends.
TEST_F(LifeSpanTest, CloseTearsDownAndEndsThePage)
{
    std::string body = "<script>addEventListener('pagehide', () => navigator.sendBeacon('/gone', 'x'));</script>";
    m_server->route("/closing", TestResponse::html(page("Closing", body)));
    m_server->route("/gone", TestResponse::html(""));
    auto view = openLoaded(m_server->url("/closing"), delegate);
    GtkWidget* engineView = GTK_WIDGET(webViewOf(*view));
    g_object_add_weak_pointer(G_OBJECT(engineView), reinterpret_cast<gpointer*>(&engineView));
    bool attachedDuringLastWord = false;
    delegate->onWillDestroy = [&](VLDBrowserView& closing) { attachedDuringLastWord = closing.hasBrowser(); };

    view->requestClose();
    ASSERT_TRUE(runMainLoopUntil([&] { return delegate->hasEvent("destroy"); }));
    EXPECT_EQ(delegate->events, (std::vector<std::string> { "created", "tearDown", "destroy" }));
    EXPECT_TRUE(attachedDuringLastWord);
    EXPECT_FALSE(view->hasBrowser());
    EXPECT_EQ(gtk_widget_get_first_child(view->widget()), nullptr);
    EXPECT_TRUE(runMainLoopUntil([&] { return engineView == nullptr; })) << "the engine's view outlived its close";
    EXPECT_TRUE(runMainLoopUntil([&] { return m_server->received("/gone"); }))
        << "the page's unload handler didn't run";

    // Commands on a closed view do nothing.
    view->loadURL(m_server->url("/closing"));
    view->reload();
    view->requestClose();
    runMainLoopFor(100ms);
    EXPECT_EQ(m_server->count("/closing"), 1);
    EXPECT_EQ(std::count(delegate->events.begin(), delegate->events.end(), "destroy"), 1);
}

// A page that asks to stay when its tab closes keeps its tab, past the time limit that closes a page too busy
// to answer (the engine gives up on a hung page itself; the bridge's limit is the last resort). The engine
// asks a page about leaving only when it has an unload handler and the user has touched it.
TEST_F(LifeSpanTest, APageThatAsksToStayStaysAndAHungOneIsClosed)
{
    SKIP_WITHOUT_REAL_INPUT();
    struct Row {
        const char* name;
        const char* onClick;
        const char* onBeforeUnload;
        bool leave; // the user's answer, when asked
        bool stays;
    };
    const char* asks = "e => { e.preventDefault(); e.returnValue = 'stay'; }";
    const Row rows[] = {
        { "asks to stay, and the user agrees", "", asks, false, true },
        { "asks to stay, and the user lets it go", "", asks, true, false },
        { "hangs", "setTimeout(() => { for (;;) { } }, 100)", "() => {}", true, false },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::string body = std::string("<button id=b ") + bigButton + " onclick='" + row.onClick
            + "'>press</button><script>addEventListener('beforeunload', " + row.onBeforeUnload + ");</script>";
        m_server->route("/page", TestResponse::html(page("Page", body)));
        auto delegate = std::make_shared<RecordingDelegate>();
        delegate->leavePage = row.leave;
        auto view = openLoaded(m_server->url("/page"), delegate);
        ASSERT_TRUE(clickElement(*view, "#b"));
        runMainLoopFor(300ms);

        VLDBrowserView::setCloseTimeLimit(500ms);
        view->requestClose();
        bool answered = runMainLoopUntil([&] { return delegate->hasEvent(row.stays ? "stayed" : "destroy"); });
        if (row.stays) {
            runMainLoopFor(3 * VLDBrowserView::closeTimeLimit());
        }
        VLDBrowserView::setCloseTimeLimit(5s);
        ASSERT_TRUE(answered);
        std::vector<std::string> expected { "created" };
        if (row.onBeforeUnload == asks) {
            expected.push_back("asked");
        }
        for (const char* event : row.stays ? std::vector { "stayed" } : std::vector { "tearDown", "destroy" }) {
            expected.push_back(event);
        }
        EXPECT_EQ(delegate->events, expected);
        EXPECT_EQ(view->hasBrowser(), row.stays);
        if (row.stays) {
            EXPECT_EQ(evaluate(*view, "document.title"), "Page") << "the page goes on";
            // Each close asks again, and the page goes when the user lets it go (the engine itself would
            // not close it after two refusals).
            view->requestClose();
            ASSERT_TRUE(runMainLoopUntil([&] { return std::ranges::count(delegate->events, "stayed") == 2; }));
            delegate->leavePage = true;
            view->requestClose();
            EXPECT_TRUE(runMainLoopUntil([&] { return delegate->hasEvent("destroy"); }));
            EXPECT_EQ(std::ranges::count(delegate->events, "asked"), 3);
        }
    }
}

} // namespace velder::test
