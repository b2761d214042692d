// Location from end to end: a page on the loopback server asks for the position, the prompt answers, and
// the position comes from a stand-in GeoClue on a private system bus, or the page hears why not.

#include "FakeLocationService.h"
#include "PageProbe.h"
#include "ShellTest.h"

#include "bridge/VLDBrowserView.h"
#include "core/Log.h"
#include "core/UrlHelper.h"
#include "shell/chrome/AddressBar.h"
#include "shell/chrome/LocationPin.h"
#include "shell/desktop/PlatformLocation.h"
#include "shell/overlays/LocationPrompt.h"
#include "shell/tab/BrowserTab.h"
#include "shell/window/MainWindow.h"
#include "shell/window/WindowChrome.h"
#include "support/TestServer.h"

using namespace velder;
using namespace velder::test;
using namespace std::chrono_literals;

namespace {

const char* wherePage = R"(<!doctype html><title>Where</title><script>
window.result = 'none';
const shown = p => p.coords.latitude.toFixed(3) + ',' + p.coords.longitude.toFixed(3);
function ask() {
    result = 'pending';
    navigator.geolocation.getCurrentPosition(p => { result = shown(p); }, e => { result = 'error ' + e.code; });
    return 1;
}
function watch() {
    result = 'pending';
    navigator.geolocation.watchPosition(p => { result = 'watching ' + shown(p); }, e => { result = 'error ' + e.code; });
    return 1;
}
</script>)";

class LocationServiceTest : public ShellTest {
protected:
    LocationServiceTest()
        : ShellTest(false)
        , service(51.5074, -0.1278)
    {
        stores.setSettings([](AppSettings& settings) { settings.locationEnabled = true; });
        server.route("/where", TestResponse::html(wherePage));
    }

    std::shared_ptr<MainWindow> openWhere()
    {
        auto window = MainWindow::create({ 0, 0, 1000, 700 }, false, true);
        WindowRegistry::shared().windows.push_back(window);
        window->install(BrowserTab::create(server.url("/where"), false), true);
        window->makeKeyAndOrderFront();
        EXPECT_TRUE(runMainLoopUntil([&] { return pageSays(*window, "none"); }, 20s));
        return window;
    }

    static bool pageSays(MainWindow& window, const std::string& value)
    {
        auto tab = window.activeTab();
        return tab && tab->view()->hasBrowser() && PageProbe::evaluate(*tab->view(), "result") == value;
    }

    static std::string permissionState(MainWindow& window)
    {
        return PageProbe::callInWorld(*window.activeTab()->view(),
            "return (await navigator.permissions.query({ name: 'geolocation' })).state;", nullptr);
    }

    static void run(MainWindow& window, const char* script)
    {
        PageProbe::evaluate(*window.activeTab()->view(), script);
    }

    FakeLocationService service;
    TestServer server;
};

} // namespace

// Allow once: the page gets the service's position, and the tab's answer serves the next request without a
// prompt. Never: the page is refused, the vault keeps false, and the stored answer decides from then on.
TEST_F(LocationServiceTest, ThePageGetsThePositionAfterAllowOnceAndARefusalAfterNever)
{
    ASSERT_TRUE(service.isReady());
    auto window = openWhere();
    LocationPrompt& strip = window->chrome().locationBar();
    EXPECT_EQ(permissionState(*window), "prompt");

    run(*window, "ask()");
    ASSERT_TRUE(runMainLoopUntil([&] { return strip.isShowing(); }, 10s));
    strip.allowOnceButton().activate();
    ASSERT_TRUE(runMainLoopUntil([&] { return pageSays(*window, "51.507,-0.128"); }, 10s))
        << PageProbe::evaluate(*window->activeTab()->view(), "result");
    EXPECT_EQ(permissionState(*window), "granted");

    run(*window, "ask()");
    ASSERT_TRUE(runMainLoopUntil([&] { return pageSays(*window, "51.507,-0.128"); }, 10s));
    EXPECT_FALSE(strip.isShowing());

    window->addressBar().pin().buildMenu();
    g_action_group_activate_action(window->addressBar().pin().actions(), "never", nullptr);
    EXPECT_EQ(stores.vault().snapshot()->locationSites.at(UrlHelper::origin(server.url("/")).value()), false);
    window->activeTab()->view()->reload();
    ASSERT_TRUE(runMainLoopUntil([&] { return pageSays(*window, "none"); }, 10s));
    run(*window, "ask()");
    ASSERT_TRUE(runMainLoopUntil([&] { return pageSays(*window, "error 1"); }, 10s));
    EXPECT_FALSE(strip.isShowing());
    // The engine tells a page "denied" only once it has asked since it loaded; before, it says "prompt".
    EXPECT_EQ(permissionState(*window), "denied");
}

// The desktop's answer: a missing or refusing service fails an allowed page's request at once (position
// unavailable), a later grant is noticed at the next request, and a withdrawal ends a running watch.
TEST_F(LocationServiceTest, TheDesktopsRefusalGrantAndWithdrawalReachThePage)
{
    ASSERT_TRUE(service.isReady());
    stores.vault().update(
        [&](VaultData& data) { data.locationSites[UrlHelper::origin(server.url("/")).value()] = true; });
    service.setPresent(false);
    auto window = openWhere();
    run(*window, "ask()");
    ASSERT_TRUE(runMainLoopUntil([&] { return pageSays(*window, "error 2"); }, 10s));
    EXPECT_EQ(PlatformLocation::status(), PlatformLocation::unavailable);

    service.setPresent(true);
    service.setRefusing(true);
    run(*window, "ask()");
    ASSERT_TRUE(runMainLoopUntil([&] { return pageSays(*window, "error 2"); }, 10s));
    EXPECT_EQ(PlatformLocation::status(), PlatformLocation::denied);

    service.setRefusing(false);
    run(*window, "watch()");
    ASSERT_TRUE(runMainLoopUntil([&] { return pageSays(*window, "watching 51.507,-0.128"); }, 10s));
    EXPECT_EQ(PlatformLocation::status(), PlatformLocation::granted);

    service.withdraw();
    ASSERT_TRUE(runMainLoopUntil([&] { return pageSays(*window, "error 2"); }, 10s));
    EXPECT_EQ(PlatformLocation::status(), PlatformLocation::denied);
}
