#include "BridgeTest.h"

#include <algorithm>
#include <gdk/gdkkeysyms.h>

namespace velder::test {

class PageReportsTest : public BridgeTest { };

// A main-frame failure is reported with its number, text and address; a subframe's is not; and a stopped
// load (-3) never is.
TEST_F(PageReportsTest, LoadErrorsOfTheMainFrameOnly)
{
    std::string refused = "http://127.0.0.1:" + std::to_string(freeLoopbackPort()) + "/nothing";
    m_server->route("/framed", TestResponse::html(page("Framed", "<iframe src='" + refused + "'></iframe>")));
    m_server->route("/slow", TestResponse { 200, "text/html", page("Slow"), {}, {}, 3000 });
    auto view = openView("", delegate);

    view->loadURL(refused);
    ASSERT_TRUE(runMainLoopUntil([&] { return !delegate->failures.empty(); }));
    EXPECT_EQ(delegate->failures[0].code, -102);
    EXPECT_EQ(delegate->failures[0].url, refused);
    EXPECT_FALSE(delegate->failures[0].text.empty());

    delegate->failures.clear();
    ASSERT_TRUE(loadAndWait(*view, *delegate, m_server->url("/framed")));
    ASSERT_TRUE(runMainLoopUntil([&] { return view->pageTitle() == "Framed"; }));
    EXPECT_TRUE(delegate->failures.empty()) << delegate->failures[0].url;

    view->loadURL(m_server->url("/slow"));
    ASSERT_TRUE(runMainLoopUntil([&] { return m_server->received("/slow") && view->isLoading(); }));
    view->stopLoading();
    ASSERT_TRUE(runMainLoopUntil([&] { return !view->isLoading(); }));
    runMainLoopFor(100ms);
    EXPECT_TRUE(delegate->failures.empty());
}

// The owner decides on main-frame navigations only, with the gesture and redirect flags.
TEST_F(PageReportsTest, NavigationDecisionsAreForTheMainFrame)
{
    m_server->route("/start", TestResponse::html(page("Start", "<iframe src='/frame'></iframe>")));
    m_server->route("/frame", TestResponse::html(page("Frame")));
    m_server->route("/moved", TestResponse::redirect("/target"));
    m_server->route("/target", TestResponse::html(page("Target")));
    m_server->route("/vetoed", TestResponse::html(page("Vetoed")));
    delegate->allowNavigation = [](const std::string& url) { return url.find("/vetoed") == std::string::npos; };
    auto view = openView(m_server->url("/start"), delegate);

    ASSERT_TRUE(
        runMainLoopUntil([&] { return delegate->isIdleAt(m_server->url("/start")) && m_server->received("/frame"); }));
    ASSERT_EQ(delegate->navigations.size(), 1u);
    EXPECT_EQ(delegate->navigations[0].url, m_server->url("/start"));
    EXPECT_FALSE(delegate->navigations[0].isRedirect);

    view->loadURL(m_server->url("/moved"));
    ASSERT_TRUE(runMainLoopUntil(
        [&] { return delegate->isIdleAt(m_server->url("/target")) && view->pageTitle() == "Target"; }));
    EXPECT_EQ(delegate->navigations.back().url, m_server->url("/target"));
    EXPECT_TRUE(delegate->navigations.back().isRedirect);

    view->loadURL(m_server->url("/vetoed"));
    ASSERT_TRUE(runMainLoopUntil([&] { return delegate->navigations.back().url == m_server->url("/vetoed"); }));
    ASSERT_TRUE(runMainLoopUntil([&] { return !view->isLoading(); }));
    runMainLoopFor(100ms);
    EXPECT_EQ(view->pageTitle(), "Target");
    EXPECT_TRUE(delegate->failures.empty());
}

// Middle click and Ctrl+click open a background tab, Ctrl+Shift+click and Shift+click a foreground one,
// without a popup. A link the page itself aims at a new window asks for a popup host instead.
TEST_F(PageReportsTest, NewTabClicks)
{
    SKIP_WITHOUT_REAL_INPUT();
    std::string links = "<a id=plain href='/t1' style='font-size:40px'>one</a><br>"
                        "<a id=blank href='/t2' target=_blank style='font-size:40px'>two</a>";
    m_server->route("/links", TestResponse::html(page("Links", links)));
    auto view = openLoaded(m_server->url("/links"), delegate);

    struct Row {
        const char* name;
        const char* selector;
        unsigned button;
        std::initializer_list<unsigned> modifiers;
        const char* path;
        bool foreground;
    };
    const Row rows[] = {
        { "middle click", "#plain", 2, {}, "/t1", false },
        { "Ctrl+click", "#plain", 1, { GDK_KEY_Control_L }, "/t1", false },
        { "Ctrl+Shift+click", "#plain", 1, { GDK_KEY_Control_L, GDK_KEY_Shift_L }, "/t1", true },
        { "Shift+click", "#plain", 1, { GDK_KEY_Shift_L }, "/t1", true },
        { "middle click on a link to a new window", "#blank", 2, {}, "/t2", false },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        delegate->newTabs.clear();
        ASSERT_TRUE(clickElement(*view, row.selector, row.button, row.modifiers));
        ASSERT_TRUE(runMainLoopUntil([&] { return !delegate->newTabs.empty(); }, 5s));
        EXPECT_EQ(delegate->newTabs[0].url, m_server->url(row.path));
        EXPECT_EQ(delegate->newTabs[0].foreground, row.foreground);
    }
    runMainLoopFor(200ms);
    // Handled by the owner: no popup was asked for, and nothing was loaded, in the page or elsewhere.
    EXPECT_FALSE(std::any_of(delegate->events.begin(), delegate->events.end(),
        [](const std::string& event) { return event.starts_with("popup:"); }));
    EXPECT_FALSE(m_server->received("/t1"));
    EXPECT_FALSE(m_server->received("/t2"));

    delegate->newTabs.clear();
    ASSERT_TRUE(clickElement(*view, "#blank", 1, {}));
    auto asked = [&] { return std::ranges::count(delegate->events, "popup:" + m_server->url("/t2")) == 1; };
    ASSERT_TRUE(runMainLoopUntil(asked));
    EXPECT_TRUE(delegate->newTabs.empty());
}

// Icon candidates in the page's order, the origin's /favicon.ico when it declares none, and a new report
// when the page adds one.
TEST_F(PageReportsTest, FaviconCandidates)
{
    std::string head = "<link rel=icon href='/a.png'><link rel=apple-touch-icon href='/touch.png'>"
                       "<link rel='shortcut icon' href='/b.ico'>";
    m_server->route("/icons", TestResponse::html(page("Icons", "", head)));
    m_server->route("/plain", TestResponse::html(page("Plain")));
    auto view = openView(m_server->url("/icons"), delegate);

    ASSERT_TRUE(runMainLoopUntil([&] { return !delegate->faviconLists.empty(); }));
    EXPECT_EQ(delegate->faviconLists.back(),
        (std::vector<std::string> { m_server->url("/b.ico"), m_server->url("/touch.png"), m_server->url("/a.png") }));

    delegate->faviconLists.clear();
    ASSERT_TRUE(loadAndWait(*view, *delegate, m_server->url("/plain")));
    ASSERT_TRUE(runMainLoopUntil([&] { return !delegate->faviconLists.empty(); }));
    EXPECT_EQ(delegate->faviconLists.back(), std::vector<std::string> { m_server->url("/favicon.ico") });

    evaluate(*view,
        "const l = document.createElement('link'); l.rel = 'icon'; l.href = '/late.png';"
        " document.head.appendChild(l); 1");
    ASSERT_TRUE(runMainLoopUntil([&] { return delegate->faviconLists.size() == 2; }));
    EXPECT_EQ(delegate->faviconLists.back(), std::vector<std::string> { m_server->url("/late.png") });
}

// The find bar's counters through the engine: the total and the active match, stepping both ways (the
// counter's wrapping is tested on its own).
TEST_F(PageReportsTest, FindCountsMatchesAndTheActiveOne)
{
    m_server->route("/text", TestResponse::html(page("Text", "<p>foo one</p><p>two FOO</p><p>three foo</p>")));
    auto view = openLoaded(m_server->url("/text"), delegate);

    struct Row {
        const char* name;
        std::string text;
        bool forward;
        bool matchCase;
        bool findNext;
        std::int32_t count;
        std::int32_t active;
    };
    const Row rows[] = {
        { "a new search", "foo", true, false, false, 3, 1 },
        { "next", "foo", true, false, true, 3, 2 },
        { "previous", "foo", false, false, true, 3, 1 },
        { "matching case is a new search", "foo", true, true, true, 2, 1 },
        { "a new search backwards starts at the last", "foo", false, false, false, 3, 3 },
        { "nothing found", "quux", true, false, false, 0, 0 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        size_t before = delegate->findResults.size();
        view->findText(row.text, row.forward, row.matchCase, row.findNext);
        ASSERT_TRUE(runMainLoopUntil([&] { return delegate->findResults.size() > before; }));
        EXPECT_EQ(delegate->findResults.back().count, row.count);
        EXPECT_EQ(delegate->findResults.back().activeMatch, row.active);
    }

    view->findText("two", true, false, false);
    ASSERT_TRUE(waitForScriptValue(*view, "getSelection().toString()", "two"));
    view->stopFindingAndClearSelection(true);
    EXPECT_TRUE(waitForScriptValue(*view, "getSelection().toString()", ""));
}

// The active number is the match the engine selected, also when the user has pressed into the page between
// steps: matches lie before and after the press.
TEST_F(PageReportsTest, TheActiveMatchIsTheOneSelectedAfterAPressInThePage)
{
    SKIP_WITHOUT_REAL_INPUT();
    std::string body;
    for (int n = 1; n <= 6; ++n) {
        body += "<p id=m" + std::to_string(n) + " style='font-size:30px'>foo " + std::to_string(n) + "</p>";
    }
    body += "<script>let presses = 0; addEventListener('mousedown', () => ++presses);</script>";
    m_server->route("/matches", TestResponse::html(page("Matches", body)));
    auto view = openLoaded(m_server->url("/matches"), delegate);
    auto find = [&](bool forward, bool findNext) {
        size_t before = delegate->findResults.size();
        view->findText("foo", forward, false, findNext);
        return runMainLoopUntil([&] { return delegate->findResults.size() > before; });
    };
    // Which paragraph holds the engine's selection, as the find bar would number it.
    auto selected = [&] {
        std::string id = evaluate(*view, "getSelection().anchorNode.parentElement.id");
        return id.size() == 2 ? id[1] - '0' : -1;
    };
    struct Step {
        const char* name;
        const char* pressOn; // a paragraph pressed first, or none
        bool forward;
        bool findNext;
    };
    const Step steps[] = {
        { "a new search", nullptr, true, false },
        { "next", nullptr, true, true },
        { "next after a press further down", "#m5", true, true },
        { "next again", nullptr, true, true },
        { "previous after a press", "#m4", false, true },
        { "a new search after a press", "#m3", true, false },
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.name);
        if (step.pressOn) {
            std::string pressed = std::to_string(std::stoi(evaluate(*view, "presses")) + 1);
            ASSERT_TRUE(clickElement(*view, step.pressOn));
            ASSERT_TRUE(waitForScriptValue(*view, "presses", pressed)) << "the press reached the page";
        }
        ASSERT_TRUE(find(step.forward, step.findNext));
        EXPECT_EQ(delegate->findResults.back().count, 6);
        EXPECT_EQ(delegate->findResults.back().activeMatch, selected());
    }
}

// What was under the pointer: the link, the page, the selected text and whether it was editable.
TEST_F(PageReportsTest, ContextMenuInfo)
{
    SKIP_WITHOUT_REAL_INPUT();
    std::string body
        = "<p><a id=link href='/elsewhere' style='font-size:40px'>a link</a></p>"
          "<p style='font-size:40px'>some <span id=word>words</span> here</p><input id=field style='width:300px'>";
    m_server->route("/menu", TestResponse::html(page("Menu", body)));
    auto view = openLoaded(m_server->url("/menu"), delegate);

    ASSERT_TRUE(clickElement(*view, "#link", 3));
    ASSERT_TRUE(runMainLoopUntil([&] { return delegate->contextMenus.size() == 1; }));
    EXPECT_EQ(delegate->contextMenus[0].linkURL, m_server->url("/elsewhere"));
    EXPECT_EQ(delegate->contextMenus[0].pageURL, m_server->url("/menu"));
    EXPECT_FALSE(delegate->contextMenus[0].isEditable);

    ASSERT_TRUE(clickElement(*view, "#field", 3));
    ASSERT_TRUE(runMainLoopUntil([&] { return delegate->contextMenus.size() == 2; }));
    EXPECT_TRUE(delegate->contextMenus[1].isEditable);
    EXPECT_TRUE(delegate->contextMenus[1].linkURL.empty());

    // A double click selects the word under the pointer, as a person would select it.
    ASSERT_TRUE(clickElement(*view, "#word"));
    ASSERT_TRUE(clickElement(*view, "#word"));
    ASSERT_TRUE(waitForScriptValue(*view, "getSelection().toString().trim()", "words"));
    runMainLoopFor(100ms);
    ASSERT_TRUE(clickElement(*view, "#word", 3));
    ASSERT_TRUE(runMainLoopUntil([&] { return delegate->contextMenus.size() == 3; }));
    EXPECT_EQ(delegate->contextMenus[2].selectionText, evaluate(*view, "getSelection().toString()"));
    EXPECT_TRUE(delegate->contextMenus[2].selectionText.starts_with("words"));
}

// A bad certificate is refused, never let through, and reported twice: as the refusal and as the failed
// load, both with the number of its worst problem.
TEST_F(PageReportsTest, BadCertificatesAreRefused)
{
    TestServer secure(TestServer::Scheme::https);
    secure.route("/secret", TestResponse::html(page("Secret")));
    auto view = openView(secure.url("/secret"), delegate);

    ASSERT_TRUE(runMainLoopUntil([&] { return !delegate->failures.empty() && !view->isLoading(); }));
    ASSERT_EQ(delegate->refusedCertificates.size(), 1u);
    EXPECT_EQ(delegate->refusedCertificates[0], std::make_pair(secure.url("/secret"), -202));
    ASSERT_EQ(delegate->failures.size(), 1u);
    EXPECT_EQ(delegate->failures[0].code, -202);
    EXPECT_EQ(delegate->failures[0].url, secure.url("/secret"));
    EXPECT_FALSE(secure.received("/secret"));
}

TEST_F(PageReportsTest, AnEndedWebProcessIsReported)
{
    m_server->route("/page", TestResponse::html(page("Page")));
    auto view = openLoaded(m_server->url("/page"), delegate);

    webkit_web_view_terminate_web_process(webViewOf(*view));
    ASSERT_TRUE(runMainLoopUntil([&] { return !delegate->terminations.empty(); }));
    EXPECT_EQ(delegate->terminations[0], VLDRenderProcessStatus::wasKilled);

    // A reload brings the page back: a new load ends there with the page's title (which the engine may keep
    // through the crash, so no new title need be reported).
    delegate->loadingStates.clear();
    view->reload();
    EXPECT_TRUE(runMainLoopUntil([&] {
        return !delegate->loadingStates.empty() && delegate->isIdleAt(m_server->url("/page"))
            && view->pageTitle() == "Page";
    }));
}

} // namespace velder::test
