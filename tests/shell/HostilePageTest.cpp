// The velder:// pages act on plain addresses ("?clear=1"), so whoever makes Velder load one acts as the user.
// A hostile page on the loopback server tries every road to them; afterwards the vault and the history are
// as they were. Typed into the address bar, the same addresses do act.

#include "PageProbe.h"
#include "ShellTest.h"

#include "bridge/VLDBrowserView.h"
#include "core/Log.h"
#include "core/TopSites.h"
#include "shell/tab/BrowserTab.h"
#include "shell/window/MainWindow.h"
#include "support/RealInput.h"
#include "support/TestServer.h"

#include <set>
#include <webkit/webkit.h>

using namespace velder;
using namespace velder::test;
using namespace std::chrono_literals;

namespace {

const std::string saveAction = "velder://settings/?save=1&SearchTemplate=https%3A%2F%2Fevil.example%2F%3Fq%3D%7Bq%7D";
const std::string clearAction = "velder://history/?clear=1";
const std::string ignoreAction = "velder://dashboard/?ignore=a.example";
const std::vector<std::string> actions = { saveAction, clearAction, ignoreAction };

const char* bigStyle = "style='display:block;width:300px;height:40px'";

class HostilePageTest : public ShellTest {
protected:
    HostilePageTest()
        : ShellTest(false)
    {
    }

    void SetUp() override
    {
        HistoryStore::shared().record("https://a.example/", "A", now());
        HistoryStore::shared().record("https://b.example/", "B", now());
        originalTemplate = Vault::shared().snapshot()->settings.searchTemplate;
    }

    std::shared_ptr<MainWindow> openWindow(const std::string& url)
    {
        auto window = MainWindow::create({ 0, 0, 1200, 780 }, false, true);
        WindowRegistry::shared().windows.push_back(window);
        window->install(BrowserTab::create(url, false), true);
        window->makeKeyAndOrderFront();
        EXPECT_TRUE(runMainLoopUntil([&] { return settled(*window, url); }, 20s)) << "never loaded " << url;
        return window;
    }

    static bool settled(MainWindow& window, const std::string& url)
    {
        auto tab = window.activeTab();
        return tab && tab->view()->hasBrowser() && !tab->isLoading && tab->url == url;
    }

    TestServer server;
    std::string originalTemplate;
};

std::string hostilePage()
{
    std::string html = "<title>Hostile</title>";
    for (std::size_t i = 0; i < actions.size(); ++i) {
        std::string n = std::to_string(i);
        const std::string& action = actions[i];
        html += "<a id=link" + n + " " + bigStyle + " href='" + action + "'>link " + n + "</a>";
        html += "<button id=open" + n + " " + bigStyle + " onclick=\"window.open('" + action + "')\">open</button>";
        html += "<iframe src='" + action + "'></iframe><img src='" + action + "'>";
        html += "<script>fetch('" + action + "').catch(() => {});</script>";
    }
    html += "<form action='velder://settings/'><input type=hidden name=save value=1><input type=hidden "
            "name=SearchTemplate value='https://evil.example/?q={q}'><button id=submit "
        + std::string(bigStyle) + ">submit</button></form>";
    return html;
}

} // namespace

TEST_F(HostilePageTest, NoRoadFromAWebPageReachesVelderActions)
{
    if (!RealInput::available()) {
        GTEST_SKIP() << "needs an X11 display with XTest";
    }
    server.route("/hostile", TestResponse::html(hostilePage()));
    for (std::size_t i = 0; i < actions.size(); ++i) {
        std::string n = std::to_string(i);
        server.route("/script" + n,
            TestResponse::html("<title>S</title><script>location.href = '" + actions[i] + "';</script>"));
        server.route("/refresh" + n,
            TestResponse::html("<title>R</title><meta http-equiv=refresh content='0;url=" + actions[i] + "'>"));
        server.route("/redirect" + n, TestResponse::redirect(actions[i]));
    }
    LogCapture log;
    auto window = openWindow(server.url("/hostile"));
    auto view = window->activeTab()->view();

    // Clicks of every kind on the page's links and buttons: plain, middle, Ctrl, Ctrl+Shift, and a form.
    for (std::size_t i = 0; i < actions.size(); ++i) {
        std::string n = std::to_string(i);
        SCOPED_TRACE(actions[i]);
        ASSERT_TRUE(PageProbe::clickElement(*view, "#link" + n));
        ASSERT_TRUE(PageProbe::clickElement(*view, "#link" + n, 2));
        ASSERT_TRUE(PageProbe::clickElement(*view, "#link" + n, 1, { GDK_KEY_Control_L }));
        ASSERT_TRUE(PageProbe::clickElement(*view, "#link" + n, 1, { GDK_KEY_Control_L, GDK_KEY_Shift_L }));
        ASSERT_TRUE(PageProbe::clickElement(*view, "#open" + n));
        runMainLoopFor(300ms);
    }
    ASSERT_TRUE(PageProbe::clickElement(*view, "#submit"));
    runMainLoopFor(500ms);

    // The page's menu: "Open Link in New Tab" and "Download Linked File" on a velder:// link.
    for (const auto& action : actions) {
        GtkWidget* root = GTK_WIDGET(window->window());
        EXPECT_TRUE(gtk_widget_activate_action(root, "win.contextOpenLinkInNewTab", "s", action.c_str()));
        EXPECT_TRUE(gtk_widget_activate_action(root, "win.contextDownloadLink", "s", action.c_str()));
    }

    // Script, refresh and a server's redirect.
    for (std::size_t i = 0; i < actions.size(); ++i) {
        for (const std::string path : { "/script", "/refresh", "/redirect" }) {
            std::string route = path + std::to_string(i);
            SCOPED_TRACE(route);
            view->loadURL(server.url(route));
            ASSERT_TRUE(runMainLoopUntil([&] { return server.received(route) && !view->isLoading(); }, 10s));
            runMainLoopFor(300ms);
        }
    }

    // A drop: a load the engine starts by itself, not through the view's commands, while a web page shows.
    for (const auto& action : actions) {
        webkit_web_view_load_uri(PageProbe::webViewOf(*view), action.c_str());
        ASSERT_TRUE(runMainLoopUntil(
            [&] { return log.contains("Velder: refused velder:// address from web content: " + action); }, 5s))
            << action;
    }
    runMainLoopFor(500ms);

    Vault::shared().flushNow();
    EXPECT_EQ(Vault::shared().snapshot()->settings.searchTemplate, originalTemplate);
    EXPECT_TRUE(Vault::shared().snapshot()->dashboardIgnored.empty());
    // The page's own visits come and go; the ones before it are all still there.
    std::set<std::string> visited;
    for (const auto& entry : HistoryStore::shared().entries()) {
        visited.insert(entry.url);
    }
    EXPECT_TRUE(visited.contains("https://a.example/"));
    EXPECT_TRUE(visited.contains("https://b.example/"));
    EXPECT_EQ(window->tabs().size(), 1u) << "no tab opened for a velder:// address";
    for (const auto& tab : window->tabs()) {
        EXPECT_FALSE(InternalRoutes::parse(tab->url)) << tab->url;
    }
}

TEST_F(HostilePageTest, TheSameAddressesTypedByTheUserDoAct)
{
    auto window = openWindow("velder://about/");
    for (const auto& action : actions) {
        SCOPED_TRACE(action);
        window->navigateActiveTab(action);
        // The action's address never stays: the tab ends at the page the action redirects to.
        ASSERT_TRUE(runMainLoopUntil(
            [&] {
                auto tab = window->activeTab();
                return !tab->isLoading && tab->url != action && InternalRoutes::parse(tab->url);
            },
            10s));
    }
    EXPECT_EQ(Vault::shared().snapshot()->settings.searchTemplate, "https://evil.example/?q={q}");
    EXPECT_EQ(Vault::shared().snapshot()->dashboardIgnored, std::vector<std::string> { "a.example" });
    EXPECT_EQ(HistoryStore::shared().count(), 0u);
}

// What the pages show of stored data is text; the policy header they come with is the bridge's InternalPagesTest.
TEST_F(HostilePageTest, DataInThePagesIsTextAndNoScriptOfItRuns)
{
    const std::string payload
        = "\"><script>document.title='pwned'</script><img src=x onerror=\"document.title='pwned'\">";
    HistoryStore::shared().record("https://a.example/" + payload, payload, now());
    HistoryStore::shared().record("https://a.example/" + payload, payload, now());
    TopSites::pin("a.example");
    Vault::shared().update([&](VaultData& data) {
        data.settings.searchTemplate = "https://s.example/?q={q}" + payload;
        data.settings.homepage = payload;
    });

    auto window = openWindow("velder://history/");
    for (const char* url : { "velder://history/", "velder://dashboard/", "velder://settings/", "velder://about/" }) {
        SCOPED_TRACE(url);
        window->navigateActiveTab(url);
        ASSERT_TRUE(
            runMainLoopUntil([&] { return settled(*window, url) && !window->activeTab()->title.empty(); }, 10s));
        runMainLoopFor(300ms);
        auto view = window->activeTab()->view();
        EXPECT_NE(window->activeTab()->title, "pwned");
        EXPECT_NE(PageProbe::evaluate(*view, "document.title"), "pwned");
        EXPECT_EQ(PageProbe::evaluate(*view, "document.querySelectorAll('script').length"),
            std::string(url) == "velder://settings/" ? "1" : "0")
            << "the only script is the settings page's own";
    }
}
