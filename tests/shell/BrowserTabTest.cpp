// A tab's reactions to its page, over a fake browser view.

#include "ShellTest.h"

#include "bridge/VLDPermissionRequest.h"
#include "core/KeyBinding.h"
#include "core/LocationSettings.h"
#include "core/Log.h"
#include "core/Shortcuts.h"
#include "shell/tab/BrowserTab.h"
#include "shell/tab/TabHost.h"

#include <glib.h>
#include <map>

using namespace velder;
using namespace velder::test;

namespace {

class BrowserTabTest : public ShellTest { };

// Records what reaches the engine's location settings.
class RecordingMirror : public LocationMirror {
public:
    void writeGlobal(const std::string& origin, int setting) override { global.emplace_back(origin, setting); }
    void writePrivate(const std::string& origin, int setting) override { priv.emplace_back(origin, setting); }
    bool hasPrivateContext() const override { return true; }
    std::vector<std::pair<std::string, int>> global;
    std::vector<std::pair<std::string, int>> priv;
};

// Counts what a tab asks of its window.
class RecordingHost : public TabHost {
public:
    void tabDidChange(BrowserTab&) override { ++changes; }
    void tabDidFindMatches(BrowserTab&) override { ++findResults; }
    void tabLocationRequestDidChange(BrowserTab&) override { ++locationChanges; }
    void tabDidHoverLink(BrowserTab&, const std::string&) override { }
    bool tabDidPressKey(BrowserTab&, BrowserAction action) override
    {
        keys.push_back(action);
        return true;
    }
    bool tabWantsContextMenu(BrowserTab&, const VLDContextMenuInfo&) override { return true; }
    bool tabOpensInNewTab(BrowserTab&, const std::string&, bool) override { return false; }
    std::shared_ptr<VLDBrowserView> tabWantsPopupHost(BrowserTab&, const std::string&) override { return nullptr; }
    void tabAsksToStay(BrowserTab&, std::function<void(bool)> answer) override { answer(true); }
    void tabKeptPage(BrowserTab&) override { }
    void tabWillTearDown(BrowserTab&) override { }
    void tabBrowserDidClose(BrowserTab&) override { }

    int changes = 0;
    int findResults = 0;
    int locationChanges = 0;
    std::vector<BrowserAction> keys;
};

std::shared_ptr<RecordingHost> hostOf(BrowserTab& tab)
{
    auto host = std::make_shared<RecordingHost>();
    tab.setHost(host);
    return host;
}

std::string decodedErrorPage(const std::string& dataURL)
{
    const std::string prefix = "data:text/html;charset=utf-8;base64,";
    EXPECT_TRUE(dataURL.starts_with(prefix));
    gsize length = 0;
    guchar* bytes = g_base64_decode(dataURL.substr(prefix.size()).c_str(), &length);
    std::string page(reinterpret_cast<char*>(bytes), length);
    g_free(bytes);
    return page;
}

} // namespace

TEST_F(BrowserTabTest, AddressReportsMakeHistoryOnlyForOrdinaryPages)
{
    auto tab = BrowserTab::create("https://start.example/", false);
    auto view = fakeViewOf(*tab);
    auto host = hostOf(*tab);

    view->reportAddress("https://start.example/"); // the tab's first load: a visit, at the address it was made with
    view->reportTitle("Start");
    view->reportAddress("https://start.example/"); // the same address again: no second visit
    view->reportAddress("https://start.example/#part"); // the same document: no visit, the title stays
    EXPECT_EQ(tab->url, "https://start.example/#part");
    EXPECT_EQ(tab->title, "Start");
    view->reportAddress("https://a.example/page");
    EXPECT_EQ(tab->displayTitle(), "a.example") << "a new address clears the title: the host shows meanwhile";
    view->reportAddress("velder://history/");
    view->reportAddress("data:text/html,hello");
    EXPECT_EQ(tab->url, "velder://history/") << "a data: report changes nothing";
    EXPECT_EQ(host->changes, 6);

    // A tab brought back by session restore, and a private tab: their loads are no new visits.
    auto restored = BrowserTab::restore("https://kept.example/");
    fakeViewOf(*restored)->reportAddress("https://kept.example/");
    auto hidden = BrowserTab::create("https://private.example/", true);
    fakeViewOf(*hidden)->reportAddress("https://private.example/");
    fakeViewOf(*hidden)->reportTitle("Secret");
    fakeViewOf(*hidden)->reportAddress("https://private.example/next");
    EXPECT_EQ(hidden->url, "https://private.example/next");

    std::map<std::string, std::int64_t> visits;
    for (const auto& entry : HistoryStore::shared().entries()) {
        visits[entry.url] = entry.visitCount;
    }
    EXPECT_EQ(visits,
        (std::map<std::string, std::int64_t> { { "https://start.example/", 1 }, { "https://a.example/page", 1 } }));
    fakeViewOf(*restored)->reportAddress("https://kept.example/later");
    EXPECT_EQ(HistoryStore::shared().entries().size(), 3u) << "a restored tab's later pages are visits";
}

TEST_F(BrowserTabTest, DisplayTitleFallsBackToHostThenNewTabThenAddress)
{
    struct Row {
        std::string url, title, expected;
    };
    std::vector<Row> rows = {
        { "https://www.a.example/x", "", "a.example" },
        { "https://www.a.example/x", "A title", "A title" },
        { "about:blank", "", "New Tab" },
        { "file:///tmp/x.html", "", "file:///tmp/x.html" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.url);
        auto tab = BrowserTab::create(row.url, false);
        tab->title = row.title;
        EXPECT_EQ(tab->displayTitle(), row.expected);
    }
}

TEST_F(BrowserTabTest, AFailedLoadShowsTheErrorPageWhileTheTabKeepsTheAddress)
{
    auto tab = BrowserTab::create("https://start.example/", false);
    auto view = fakeViewOf(*tab);
    LogCapture log;
    view->delegate()->didFailLoad(*view, -105, "Name not resolved", "https://no.such.example/<x>");
    EXPECT_EQ(tab->url, "https://no.such.example/<x>");
    EXPECT_EQ(tab->errorURL, "https://no.such.example/<x>");
    EXPECT_EQ(tab->title, "Cannot open page");
    ASSERT_EQ(view->loaded.size(), 1u);
    std::string page = decodedErrorPage(view->loaded[0]);
    EXPECT_NE(page.find("https://no.such.example/&lt;x&gt;"), std::string::npos);
    EXPECT_NE(page.find("That address could not be found (DNS lookup failed)."), std::string::npos);
    EXPECT_TRUE(log.contains("Velder: load failed (-105 Name not resolved) for https://no.such.example/<x>"));

    view->reportAddress(view->loaded[0]); // the data: document commits: the tab keeps the failed address
    EXPECT_EQ(tab->url, "https://no.such.example/<x>");

    view->delegate()->didFailLoad(*view, -3, "", "https://aborted.example/");
    EXPECT_EQ(view->loaded.size(), 1u) << "an aborted load shows nothing";

    view->delegate()->didTerminateRenderProcess(*view, 2);
    ASSERT_EQ(view->loaded.size(), 2u);
    EXPECT_NE(decodedErrorPage(view->loaded[1]).find("The page crashed (status 2)."), std::string::npos);
    EXPECT_TRUE(log.contains("Velder: render process terminated (status 2)"));

    // A reload tries the failed address again, not the error page; a page that loads ends the error.
    tab->reload(false);
    ASSERT_EQ(view->loaded.size(), 3u);
    EXPECT_EQ(view->loaded[2], "https://no.such.example/<x>");
    view->reportAddress("https://no.such.example/<x>");
    tab->reload(true);
    EXPECT_EQ(view->commands, std::vector<std::string> { "reloadIgnoringCache" });
}

// The key table's matching has its own test: here, that its answer reaches the window, or nothing does.
TEST_F(BrowserTabTest, TheEngineKeyHookRunsTheKeyTable)
{
    auto tab = BrowserTab::create("https://a.example/", false);
    auto host = hostOf(*tab);
    EXPECT_TRUE(tab->handleEngineKey(84, KeyModifier::command)); // Ctrl+T
    EXPECT_EQ(host->keys, std::vector<BrowserAction> { BrowserAction::Kind::newTab });
    EXPECT_FALSE(tab->handleEngineKey(65, 0));
    EXPECT_EQ(host->keys.size(), 1u);
}

TEST_F(BrowserTabTest, AnEmptyFindClearsWithoutSearching)
{
    auto tab = BrowserTab::create("https://a.example/", false);
    auto view = fakeViewOf(*tab);
    auto host = hostOf(*tab);
    view->delegate()->didFindMatchCount(*view, 12, 3, false);
    EXPECT_EQ(tab->findMatchCount, 12);
    EXPECT_EQ(tab->findActiveMatch, 3);
    tab->find("", true, false);
    EXPECT_EQ(tab->findMatchCount, 0);
    EXPECT_EQ(tab->findActiveMatch, 0);
    EXPECT_EQ(view->commands, (std::vector<std::string> { "stopFinding" }));
    EXPECT_EQ(host->findResults, 2);
    tab->find("word", false, true);
    EXPECT_EQ(view->commands.back(), "find word backward next");
}

// A pick of "Never" through the window, stored and then refusing the page, is LocationServiceTest's.
TEST_F(BrowserTabTest, LocationRequestsFollowTheStoredAnswersAndTheSessionAnswer)
{
    auto mirror = std::make_shared<RecordingMirror>();
    LocationSettings::shared().setMirror(mirror);
    Vault::shared().update([](VaultData& data) {
        data.settings.locationEnabled = true;
        data.locationSites["https://blocked.example"] = false;
    });
    auto tab = BrowserTab::create("https://a.example/", false);
    auto host = hostOf(*tab);

    auto blocked = std::make_shared<FakePermissionRequest>("https://blocked.example");
    EXPECT_TRUE(tab->handleLocationRequest(blocked));
    EXPECT_EQ(blocked->answer, false);

    EXPECT_FALSE(tab->handleLocationRequest(
        std::make_shared<FakePermissionRequest>("https://a.example", VLDPermissionRequest::Kind::other)));

    // Two requests before an answer: the first is denied, the second parked, one change each.
    auto first = std::make_shared<FakePermissionRequest>("https://a.example");
    auto second = std::make_shared<FakePermissionRequest>("https://a.example");
    EXPECT_TRUE(tab->handleLocationRequest(first));
    EXPECT_TRUE(tab->handleLocationRequest(second));
    EXPECT_EQ(first->answer, false);
    EXPECT_FALSE(second->answer);
    EXPECT_EQ(tab->pendingLocationRequest, second);
    EXPECT_EQ(host->locationChanges, 2);

    // "Allow once": the request is allowed, nothing is stored, the tab is lit while it stays on the origin.
    tab->resolveLocation(LocationChoice::allowOnce);
    EXPECT_EQ(second->answer, true);
    EXPECT_FALSE(Vault::shared().snapshot()->locationSites.contains("https://a.example"));
    EXPECT_TRUE(tab->isLocationLit());
    fakeViewOf(*tab)->reportAddress("https://a.example/other");
    EXPECT_TRUE(tab->isLocationLit());

    // Leaving the origin ends the one-time answer, and the engine is set back to ask for it.
    mirror->global.clear();
    fakeViewOf(*tab)->reportAddress("https://b.example/");
    EXPECT_FALSE(tab->sessionAnswer());
    EXPECT_EQ(mirror->global, (std::vector<std::pair<std::string, int>> { { "https://a.example", 3 } }));

    // With the switch off every request is denied, and no pin is lit.
    Vault::shared().update([](VaultData& data) { data.settings.locationEnabled = false; });
    auto fourth = std::make_shared<FakePermissionRequest>("https://c.example");
    EXPECT_TRUE(tab->handleLocationRequest(fourth));
    EXPECT_EQ(fourth->answer, false);
    EXPECT_FALSE(tab->isLocationLit());
    EXPECT_EQ(tab->locationStateForOrigin(*tab->view(), "https://c.example"), VLDPermissionRequest::State::denied)
        << "what a request would get: refused";
    LocationSettings::shared().setMirror(nullptr);
}

TEST_F(BrowserTabTest, PrivateTabsAskEveryOriginAndStoreNothing)
{
    auto mirror = std::make_shared<RecordingMirror>();
    LocationSettings::shared().setMirror(mirror);
    Vault::shared().update([](VaultData& data) {
        data.settings.locationEnabled = true;
        data.locationSites["https://a.example"] = false; // blocked in ordinary windows
    });
    auto tab = BrowserTab::create("https://a.example/", true);
    EXPECT_EQ(tab->locationStateForOrigin(*tab->view(), "https://a.example"), VLDPermissionRequest::State::prompt);
    auto request = std::make_shared<FakePermissionRequest>("https://a.example");
    EXPECT_TRUE(tab->handleLocationRequest(request));
    EXPECT_FALSE(request->answer) << "a private tab asks, whatever ordinary windows answered";
    tab->resolveLocation(LocationChoice::alwaysAllow);
    EXPECT_EQ(request->answer, true);
    EXPECT_EQ(Vault::shared().snapshot()->locationSites.at("https://a.example"), false);
    EXPECT_TRUE(mirror->global.empty());
    EXPECT_EQ(mirror->priv, (std::vector<std::pair<std::string, int>> { { "https://a.example", 1 } }));
    EXPECT_TRUE(tab->isLocationLit());
    EXPECT_EQ(tab->locationStateForOrigin(*tab->view(), "https://a.example"), VLDPermissionRequest::State::granted);
    LocationSettings::shared().setMirror(nullptr);
}

TEST_F(BrowserTabTest, OrdinaryTabsHandTheirIconsToTheFetcherAndPrivateOnesDont)
{
    for (bool isPrivate : { false, true }) {
        SCOPED_TRACE(isPrivate ? "private" : "ordinary");
        auto tab = BrowserTab::create("https://" + std::string(isPrivate ? "p" : "o") + ".example/", isPrivate);
        auto view = fakeViewOf(*tab);
        view->delegate()->didChangeFaviconURLs(
            *view, { "data:image/png;base64,AAAA", "https://cdn.example/icon.png", "https://cdn.example/b.ico" });
        std::vector<std::string> fetches;
        std::copy_if(view->commands.begin(), view->commands.end(), std::back_inserter(fetches),
            [](const std::string& command) { return command.starts_with("fetchIcon"); });
        if (isPrivate) {
            EXPECT_TRUE(fetches.empty());
        } else {
            EXPECT_EQ(fetches, std::vector<std::string> { "fetchIcon https://cdn.example/icon.png" });
        }
    }
}
