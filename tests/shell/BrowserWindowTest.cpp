// A real browser window: the engine's pages from a loopback server, real keys and clicks, and pictures of
// the chrome that a person can look at (written to test-artifacts/ in the build folder).

#include "PageProbe.h"
#include "ShellTest.h"
#include "WidgetTestSupport.h"

#include "bridge/VLDBrowserView.h"
#include "core/Palette.h"
#include "shell/chrome/AddressBar.h"
#include "shell/chrome/KeyboardFocus.h"
#include "shell/chrome/TabSlot.h"
#include "shell/chrome/TabStrip.h"
#include "shell/overlays/FindBar.h"
#include "shell/overlays/LeavePagePrompt.h"
#include "shell/overlays/LinkStatus.h"
#include "shell/overlays/UrlSuggestions.h"
#include "shell/tab/BrowserTab.h"
#include "shell/window/LeaveQuestions.h"
#include "shell/window/MainWindow.h"
#include "shell/window/WindowChrome.h"
#include "support/RealInput.h"
#include "support/TestServer.h"

#include <filesystem>

using namespace velder;
using namespace velder::test;
using namespace std::chrono_literals;

namespace {

std::string page(const std::string& title, const std::string& body = "", const std::string& head = "")
{
    return "<!doctype html><html><head><title>" + title + "</title>" + head
        + "</head><body style=\"font: 16px sans-serif; margin: 40px; min-height: 600px\""
          " onclick=\"document.title = 'Touched'\"><h1>"
        + title + "</h1>" + body + "</body></html>";
}

class BrowserWindowTest : public ShellTest {
protected:
    BrowserWindowTest()
        : ShellTest(false)
    {
    }

    void SetUp() override
    {
        if (!RealInput::available()) {
            GTEST_SKIP() << "needs an X11 display with XTest";
        }
    }

    // A window at the top-left of the screen with a live, loaded tab for each path.
    std::shared_ptr<MainWindow> openWindow(const std::vector<std::string>& paths)
    {
        auto window = MainWindow::create({ 0, 0, 1200, 780 }, false, true);
        WindowRegistry::shared().windows.push_back(window);
        for (const auto& path : paths) {
            window->install(BrowserTab::create(server.url(path), false), false);
        }
        window->makeKeyAndOrderFront();
        bool loaded = runMainLoopUntil(
            [&] {
                return std::all_of(window->tabs().begin(), window->tabs().end(),
                    [](auto& tab) { return tab->view()->hasBrowser() && !tab->isLoading && !tab->title.empty(); });
            },
            20s);
        EXPECT_TRUE(loaded) << "the pages never loaded";
        return window;
    }

    // A real click in the active page, which the page answers by changing its title to "Touched". A window
    // just raised may take the first click for itself, so the click is repeated until the page has it.
    bool touchPage(MainWindow& window)
    {
        auto tab = window.activeTab();
        for (int attempt = 0; attempt < 3; ++attempt) {
            RealInput::click(tab->view()->widget(), 300, 300);
            if (runMainLoopUntil([&] { return tab->title == "Touched"; }, 2s)) {
                return true;
            }
        }
        screenshotWindow(window.window(), artifact("touch-failed.png"));
        return false;
    }

    static bool pageHasTheKeyboard(MainWindow& window)
    {
        GtkWidget* focus = gtk_window_get_focus(window.window());
        return focus && gtk_widget_is_ancestor(focus, window.container());
    }

    static std::string artifact(const std::string& name)
    {
        std::filesystem::create_directories(VELDER_ARTIFACTS_DIR);
        return std::string(VELDER_ARTIFACTS_DIR) + "/" + name;
    }

    TestServer server;
};

} // namespace

TEST_F(BrowserWindowTest, PicturesOfTheChrome)
{
    server.route("/northern", TestResponse::html(page("Northern Lights", "<p>Tonight's forecast.</p>")));
    server.route("/tides", TestResponse::html(page("Tide Tables")));
    server.route("/mornings", TestResponse::html(page("Quiet Mornings")));
    auto window = openWindow({ "/northern", "/tides", "/mornings" });
    window->selectTab(1);

    // The page paints a moment after it has loaded: take pictures until it shows.
    std::string threeTabs = artifact("window-with-three-tabs.png");
    Rendering picture = screenshotWindow(window->window(), threeTabs);
    for (int attempt = 0; attempt < 20 && !near(picture.at(600, 400), Color::fromHex(0xFFFFFF)); ++attempt) {
        picture = screenshotWindow(window->window(), threeTabs);
    }
    EXPECT_GT(std::filesystem::file_size(threeTabs), 10000u);
    // The title row is drawn in the border colour, the toolbar in the field colour.
    EXPECT_TRUE(pixelIs(picture.at(picture.width() - 300, 20), Palette::borderColor()));
    EXPECT_TRUE(pixelIs(picture.at(picture.width() - 30, 75), Palette::fieldColor()));
    EXPECT_TRUE(pixelIs(picture.at(600, 400), Color::fromHex(0xFFFFFF))) << "the page shows";
}

// A row walked to with the arrows is only shown in the field: Escape, or leaving the field, gives back the
// text typed or the page's own address. Return on it opens that row.
TEST_F(BrowserWindowTest, TheFieldShowsARowWalkedToAndReturnOpensIt)
{
    for (const char* path : { "/start", "/alpha", "/beta" }) {
        server.route(path, TestResponse::html(page(std::string("Page ") + (path + 1))));
    }
    auto window = openWindow({ "/start" });
    // Visits decide the rows' order: alpha, beta, and the tab's own first load.
    for (int i = 0; i < 3; ++i) {
        HistoryStore::shared().record(server.url("/alpha"), "Alpha", now());
    }
    for (int i = 0; i < 2; ++i) {
        HistoryStore::shared().record(server.url("/beta"), "Beta", now());
    }
    GtkWidget* root = GTK_WIDGET(window->window());
    auto typeAndWalk = [&] {
        RealInput::pressKey(root, GDK_KEY_l, { GDK_KEY_Control_L });
        for (unsigned key : { GDK_KEY_1, GDK_KEY_2, GDK_KEY_7 }) {
            RealInput::pressKey(root, key);
        }
        EXPECT_TRUE(runMainLoopUntil([&] { return window->suggestions().entries().size() >= 2; }));
        RealInput::pressKey(root, GDK_KEY_Down);
        RealInput::pressKey(root, GDK_KEY_Down);
        EXPECT_TRUE(runMainLoopUntil([&] { return window->suggestions().selectedIndex() == 1; }));
        EXPECT_TRUE(window->addressBar().text().starts_with("http"));
    };
    std::string own = server.url("/start");

    typeAndWalk();
    RealInput::pressKey(root, GDK_KEY_Escape);
    EXPECT_TRUE(runMainLoopUntil([&] { return window->addressBar().text() == "127"; }))
        << "the first Escape gives back what was typed";
    RealInput::pressKey(root, GDK_KEY_Escape);
    EXPECT_TRUE(runMainLoopUntil([&] { return window->addressBar().text() == own; }))
        << "the second gives back the page's address";
    ASSERT_TRUE(touchPage(*window));
    EXPECT_EQ(window->addressBar().text(), own);

    typeAndWalk();
    ASSERT_TRUE(touchPage(*window));
    EXPECT_TRUE(runMainLoopUntil([&] { return !window->addressBar().isEditing(); }));
    EXPECT_EQ(window->addressBar().text(), "127") << "leaving the field keeps what was typed, not the row walked to";
    EXPECT_EQ(window->activeTab()->url, own);

    typeAndWalk();
    EXPECT_EQ(window->addressBar().text(), server.url("/beta"));
    RealInput::pressKey(root, GDK_KEY_Return);
    ASSERT_TRUE(runMainLoopUntil([&] { return window->activeTab()->url == server.url("/beta"); }));
    EXPECT_TRUE(server.received("/beta"));
    EXPECT_FALSE(server.received("/alpha"));
    EXPECT_FALSE(window->suggestions().isShowing());
}

// The tab strip by the mouse: a middle click closes a background tab and leaves the active one active, the
// wheel walks the tabs without wrapping, and each slot's tool tip names its tab's title and address.
TEST_F(BrowserWindowTest, TheStripByTheMouse)
{
    for (const char* path : { "/a", "/b", "/c", "/d" }) {
        server.route(path, TestResponse::html(page(std::string("Tab ") + (path + 1))));
    }
    auto window = openWindow({ "/a", "/b", "/c", "/d" });
    window->perform(BrowserAction::selectTab(1));
    TabStrip& strip = window->strip();
    RealInput::click(strip.slot(2).widget(), 40, 12, 2);
    ASSERT_TRUE(runMainLoopUntil([&] { return window->tabs().size() == 3; }));
    EXPECT_EQ(window->activeTab()->url, server.url("/a")) << "closing a background tab keeps the active one";
    ASSERT_TRUE(runMainLoopUntil([&] { return strip.slotCount() == 3; }));
    EXPECT_STREQ(gtk_widget_get_tooltip_text(strip.slot(2).widget()), ("Tab d\n" + server.url("/d")).c_str());

    GtkWidget* first = strip.slot(0).widget();
    for (const char* expected : { "/b", "/d", "/d" }) {
        RealInput::click(first, 40, 12, 5); // the wheel turned down
        EXPECT_TRUE(runMainLoopUntil([&] { return window->activeTab()->url == server.url(expected); }))
            << "after a turn the active tab should be " << expected;
    }
    RealInput::click(first, 40, 12, 4); // up
    EXPECT_TRUE(runMainLoopUntil([&] { return window->activeTab()->url == server.url("/b"); }));
}

// Over a link, its address shows at the bottom-left of the page; it makes way for a pointer that comes
// near it, and goes when the pointer leaves the link or the tab changes.
TEST_F(BrowserWindowTest, TheLinkUnderThePointerShowsWhereItGoes)
{
    std::string links = "<a href='/top' style='position:fixed; left:0; top:0; width:400px; height:120px;"
                        " display:block'>top</a><a href='/corner' style='position:fixed; left:0; bottom:0;"
                        " width:300px; height:30px; display:block'>corner</a>";
    server.route("/links", TestResponse::html(page("Links", links)));
    server.route("/other", TestResponse::html(page("Other")));
    auto window = openWindow({ "/links", "/other" });
    LinkStatus& status = window->chrome().linkStatus();
    GtkWidget* view = window->activeTab()->view()->widget();

    RealInput::movePointer(view, 100, 60);
    ASSERT_TRUE(runMainLoopUntil([&] { return status.isShowing(); }));
    EXPECT_EQ(status.text(), server.url("/top"));
    EXPECT_FALSE(status.isOnTheRight());

    RealInput::movePointer(view, 100, gtk_widget_get_height(view) - 10);
    ASSERT_TRUE(runMainLoopUntil([&] { return status.text() == server.url("/corner"); }));
    EXPECT_TRUE(status.isOnTheRight()) << "the label makes way for the pointer near its corner";

    RealInput::movePointer(view, 700, 300);
    EXPECT_TRUE(runMainLoopUntil([&] { return !status.isShowing(); })) << "off the links, nothing shows";

    RealInput::movePointer(view, 100, 60);
    ASSERT_TRUE(runMainLoopUntil([&] { return status.isShowing(); }));
    window->selectTab(1);
    EXPECT_FALSE(status.isShowing()) << "another tab's link isn't under the pointer";
}

// The menu bar by the keyboard alone, from a page: F10, the arrows, Escape, Alt and a letter, Return.
TEST_F(BrowserWindowTest, TheMenuBarByTheKeyboard)
{
    server.route("/one", TestResponse::html(page("One")));
    auto window = openWindow({ "/one" });
    ASSERT_TRUE(touchPage(*window));
    GtkWidget* root = GTK_WIDGET(window->window());
    GtkWidget* bar = window->chrome().menuBar();
    auto focusedTitle = [&] {
        GtkWidget* focus = gtk_window_get_focus(window->window());
        return focus && gtk_widget_get_parent(focus) == bar ? focus : nullptr;
    };
    auto title = [&](int index) {
        GtkWidget* item = gtk_widget_get_first_child(bar);
        for (int i = 0; i < index; ++i) {
            item = gtk_widget_get_next_sibling(item);
        }
        return item;
    };
    auto isOpen = [&](int index) { return gtk_widget_get_mapped(gtk_widget_get_last_child(title(index))); };

    RealInput::pressKey(root, GDK_KEY_F10);
    ASSERT_TRUE(runMainLoopUntil([&] { return gtk_widget_get_visible(bar) && focusedTitle() == title(0); }))
        << "F10 shows the bar with the focus on its first menu";
    RealInput::pressKeyInPlace(GDK_KEY_Right);
    EXPECT_TRUE(runMainLoopUntil([&] { return focusedTitle() == title(1); }));
    RealInput::pressKeyInPlace(GDK_KEY_Down);
    EXPECT_TRUE(runMainLoopUntil([&] { return isOpen(1); })) << "Down opens File";
    RealInput::pressKeyInPlace(GDK_KEY_Right);
    EXPECT_TRUE(runMainLoopUntil([&] { return isOpen(2) && !isOpen(1); })) << "Right goes on to Edit";
    RealInput::pressKeyInPlace(GDK_KEY_Escape);
    EXPECT_TRUE(runMainLoopUntil([&] { return !isOpen(2) && !gtk_widget_get_visible(bar); }))
        << "Escape closes the menu, and with no menu open the bar goes";
    auto pageHasTheKeyboard = [&] { return this->pageHasTheKeyboard(*window); };
    EXPECT_TRUE(runMainLoopUntil(pageHasTheKeyboard)) << "the page has the keyboard back";

    RealInput::pressKey(root, GDK_KEY_s, { GDK_KEY_Alt_L });
    EXPECT_TRUE(runMainLoopUntil([&] { return gtk_widget_get_visible(bar) && isOpen(4); }))
        << "Alt and the underlined letter open History";
    RealInput::pressKeyInPlace(GDK_KEY_Escape);
    EXPECT_TRUE(runMainLoopUntil([&] { return !gtk_widget_get_visible(bar); }));

    RealInput::pressKey(root, GDK_KEY_F10);
    ASSERT_TRUE(runMainLoopUntil([&] { return focusedTitle() == title(0); }));
    RealInput::pressKey(root, GDK_KEY_Escape);
    EXPECT_TRUE(runMainLoopUntil([&] { return !gtk_widget_get_visible(bar) && pageHasTheKeyboard(); }))
        << "Escape on the titles alone hides the bar";
}

TEST_F(BrowserWindowTest, CtrlWInAPageClosesTheTab)
{
    server.route("/one", TestResponse::html(page("One")));
    server.route("/two", TestResponse::html(page("Two", "<input id=field autofocus>")));
    auto window = openWindow({ "/one", "/two" });
    window->selectTab(1);
    ASSERT_TRUE(touchPage(*window));
    RealInput::pressKey(GTK_WIDGET(window->window()), GDK_KEY_w, { GDK_KEY_Control_L });
    ASSERT_TRUE(runMainLoopUntil([&] { return window->tabs().size() == 1; }, 10s));
    EXPECT_EQ(window->tabs()[0]->url, server.url("/one"));
    EXPECT_EQ(delegate->closedTabs().front(), server.url("/two"));
}

TEST_F(BrowserWindowTest, EscapeWithTheFindBarOpenClosesTheBarNotTheLoad)
{
    server.route("/page", TestResponse::html(page("Page", "<p>findable words</p>")));
    TestResponse slow = TestResponse::html(page("Slow Page"));
    slow.delayMilliseconds = 1500;
    server.route("/slow", slow);
    auto window = openWindow({ "/page" });
    window->perform(BrowserAction::Kind::find);
    ASSERT_TRUE(window->findBarIsShowing());

    window->activeTab()->view()->loadURL(server.url("/slow"));
    ASSERT_TRUE(runMainLoopUntil([&] { return window->activeTab()->isLoading; }, 5s));
    window->activeTab()->view()->setBrowserFocus(true);
    runMainLoopFor(100ms);
    RealInput::pressKey(GTK_WIDGET(window->window()), GDK_KEY_Escape);
    ASSERT_TRUE(runMainLoopUntil([&] { return !window->findBarIsShowing(); }, 5s));
    EXPECT_TRUE(window->activeTab()->isLoading) << "the load goes on";
    ASSERT_TRUE(runMainLoopUntil([&] { return window->activeTab()->title == "Slow Page"; }, 10s));
    EXPECT_EQ(window->activeTab()->url, server.url("/slow"));
}

// A page that asks to stay is asked about: Stay keeps it (and the window, which may be closed again),
// Leave closes it, and the closed tabs hold it once.
TEST_F(BrowserWindowTest, APageThatAsksToStayIsAskedAbout)
{
    server.route("/plain", TestResponse::html(page("Plain")));
    server.route("/stay",
        TestResponse::html(page("Stay", "",
            "<script>addEventListener('beforeunload', e => { e.preventDefault(); "
            "e.returnValue = ''; });</script>")));
    auto window = openWindow({ "/plain", "/stay" });
    window->selectTab(1);
    ASSERT_TRUE(touchPage(*window)); // a page may only hold on to a visitor it has met
    // The question, once it is on the screen.
    auto prompt = [&] {
        LeavePagePrompt* asking = window->leaveQuestions().current();
        return asking && gtk_widget_get_width(asking->stayButton()) > 0 ? asking : nullptr;
    };

    window->closeTab(1);
    ASSERT_TRUE(runMainLoopUntil([&] { return prompt() != nullptr; }));
    EXPECT_STREQ(gtk_window_get_title(prompt()->window()), "Leave page?");
    RealInput::pressKey(GTK_WIDGET(prompt()->window()), GDK_KEY_Escape);
    ASSERT_TRUE(runMainLoopUntil([&] { return prompt() == nullptr; }));
    runMainLoopFor(300ms);
    ASSERT_EQ(window->tabs().size(), 2u);
    EXPECT_TRUE(window->tabs()[1]->view()->hasBrowser());
    EXPECT_TRUE(delegate->closedTabs().empty());

    // The window's close asks again; Stay leaves the window open and closable.
    window->performClose();
    ASSERT_TRUE(runMainLoopUntil([&] { return prompt() != nullptr; }));
    EXPECT_EQ(window->activeTab(), window->tabs().back()) << "the page asked about is shown";
    screenshotWindow(prompt()->window(), artifact("leave-page.png"));
    RealInput::click(prompt()->stayButton(), 10, 10);
    ASSERT_TRUE(runMainLoopUntil([&] { return prompt() == nullptr && !window->isClosing(); }));
    ASSERT_EQ(window->tabs().size(), 1u) << "the page without the handler went";
    EXPECT_EQ(window->tabs()[0]->url, server.url("/stay"));

    window->closeTab(0);
    ASSERT_TRUE(runMainLoopUntil([&] { return prompt() != nullptr; }));
    RealInput::click(prompt()->leaveButton(), 10, 10);
    ASSERT_TRUE(runMainLoopUntil([&] { return window->tabs().empty(); }, 10s));
    EXPECT_EQ(std::ranges::count(delegate->closedTabs(), server.url("/stay")), 0)
        << "the last tab goes with its window, not to the closed tabs";
}

// What a page aims at a new window opens a tab with the engine's own view of it: a form's POST keeps its
// body, a page opened by name knows its opener (target=_blank means noopener), and a named target opened
// twice is one tab.
TEST_F(BrowserWindowTest, PagesAimingAtNewWindowsKeepWhatTheySend)
{
    std::string body = "<form method=post action=/sent target=_blank>"
                       "<input type=hidden name=note value='kept safe'>"
                       "<button id=send style='position:fixed;left:0;top:0;width:300px;height:150px'>Send</button>"
                       "</form>"
                       "<a href=/named target=results "
                       "style='position:fixed;left:0;top:200px;width:300px;height:150px;display:block'>Results</a>";
    server.route("/form", TestResponse::html(page("Form", body)));
    server.route("/sent", TestResponse::html(page("Sent")));
    server.route("/named",
        TestResponse::html(page("Named", "<script>document.title = window.opener ? 'Opened' : 'Alone';</script>")));
    auto window = openWindow({ "/form" });
    GtkWidget* page = window->activeTab()->view()->widget();

    RealInput::click(page, 100, 60);
    ASSERT_TRUE(runMainLoopUntil([&] { return window->tabs().size() == 2 && server.received("/sent"); }, 10s));
    const TestRequest& sent = *std::ranges::find(server.requests(), "/sent", &TestRequest::path);
    EXPECT_EQ(sent.method, "POST");
    EXPECT_EQ(sent.body, "note=kept+safe");
    EXPECT_TRUE(runMainLoopUntil([&] { return window->addressBar().text() == server.url("/sent"); }))
        << "the new tab shows its address, and the page has the keyboard";

    for (int time = 0; time < 2; ++time) {
        window->selectTab(0);
        runMainLoopFor(200ms);
        RealInput::click(page, 100, 260);
        ASSERT_TRUE(runMainLoopUntil([&] { return server.count("/named") == time + 1; }, 10s));
    }
    ASSERT_TRUE(runMainLoopUntil([&] { return window->tabs().size() == 3 && !window->tabs()[2]->isLoading; }));
    runMainLoopFor(300ms);
    EXPECT_EQ(window->tabs().size(), 3u) << "the named target was reused";
    EXPECT_EQ(window->tabs()[2]->url, server.url("/named"));
    EXPECT_EQ(window->tabs()[2]->title, "Opened");
}

// Ctrl+F selects the search text every time, so that what is typed next replaces it, also after the page
// has found the old text (its selection must not unselect the field's).
TEST_F(BrowserWindowTest, CtrlFSelectsTheOldSearchToReplaceIt)
{
    server.route("/one", TestResponse::html(page("One", "<p>plum plum</p>")));
    server.route("/two", TestResponse::html(page("Two", "<p>plum pear</p>")));
    auto window = openWindow({ "/one", "/two" });
    GtkWidget* root = GTK_WIDGET(window->window());
    RealInput::pressKey(root, GDK_KEY_f, { GDK_KEY_Control_L });
    for (unsigned key : { GDK_KEY_p, GDK_KEY_l, GDK_KEY_u, GDK_KEY_m }) {
        RealInput::pressKey(root, key);
    }
    ASSERT_TRUE(runMainLoopUntil([&] { return window->findBar().countText() == "1/2"; }));
    RealInput::pressKey(root, GDK_KEY_Tab, { GDK_KEY_Control_L });
    ASSERT_TRUE(runMainLoopUntil([&] { return window->activeIndex() == 1; }));
    RealInput::pressKey(root, GDK_KEY_f, { GDK_KEY_Control_L });
    ASSERT_TRUE(runMainLoopUntil([&] { return window->findBar().countText() == "1/1"; }));
    runMainLoopFor(300ms); // the page's own selection of the match settles
    for (unsigned key : { GDK_KEY_p, GDK_KEY_e }) {
        RealInput::pressKey(root, key);
    }
    EXPECT_TRUE(runMainLoopUntil([&] { return window->findBar().text() == "pe"; }))
        << "the field holds '" << window->findBar().text() << "'";
}

// F6 and Shift+F6 go round the address bar, the page and the tab strip; the focused tab shows a ring in the
// chrome's colours, and Tab and Return there select another tab.
TEST_F(BrowserWindowTest, F6GoesRoundTheWindowAndTheFocusShows)
{
    server.route("/one", TestResponse::html(page("One")));
    server.route("/two", TestResponse::html(page("Two")));
    auto window = openWindow({ "/one", "/two" });
    GtkWidget* root = GTK_WIDGET(window->window());
    GtkWidget* activeSlot = window->strip().slot(0).widget();
    ASSERT_TRUE(touchPage(*window));

    RealInput::pressKey(root, GDK_KEY_F6);
    ASSERT_TRUE(runMainLoopUntil([&] { return gtk_window_get_focus(window->window()) == activeSlot; }));
    // The ring's pixels in the title row, taken until the picture shows what is asked of it (a window
    // repaints a moment after its focus moves): with the focus on the tab, and after it has gone.
    auto ringPixels = [&](const char* name, const std::function<bool(int)>& done) {
        int count = -1;
        for (int attempt = 0; attempt < 20 && (count < 0 || !done(count)); ++attempt) {
            Rendering picture = screenshotWindow(window->window(), artifact(name));
            Color ring = KeyboardFocus::ringColor(Palette::borderColor());
            count = picture.countNear(ring, 8, 0, 0, gtk_widget_get_width(activeSlot) + 20, 46);
        }
        return count;
    };
    int focused = ringPixels("focused-tab.png", [](int count) { return count >= 400; });
    RealInput::pressKey(root, GDK_KEY_F6);
    EXPECT_TRUE(runMainLoopUntil([&] { return window->addressBar().isEditing(); }));
    int unfocused = ringPixels("unfocused-tab.png", [&](int count) { return count + 300 <= focused; });
    EXPECT_GE(focused - unfocused, 300) << "the focused tab draws a ring (" << focused << " against " << unfocused
                                        << " pixels of its colour)";
    RealInput::pressKey(root, GDK_KEY_F6);
    EXPECT_TRUE(runMainLoopUntil([&] { return pageHasTheKeyboard(*window); }));

    RealInput::pressKey(root, GDK_KEY_F6, { GDK_KEY_Shift_L });
    EXPECT_TRUE(runMainLoopUntil([&] { return window->addressBar().isEditing(); }));
    RealInput::pressKey(root, GDK_KEY_F6, { GDK_KEY_Shift_L });
    ASSERT_TRUE(runMainLoopUntil([&] { return gtk_window_get_focus(window->window()) == activeSlot; }));
    RealInput::pressKey(root, GDK_KEY_Tab);
    RealInput::pressKey(root, GDK_KEY_Return);
    EXPECT_TRUE(runMainLoopUntil([&] { return window->activeIndex() == 1; })) << "Return selects the focused tab";
}
