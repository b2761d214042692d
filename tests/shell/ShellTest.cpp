#include "ShellTest.h"

#include "app/Launcher.h"
#include "bridge/VLDEngineRuntime.h"
#include "core/FaviconFetcher.h"
#include "core/LocationSettings.h"
#include "shell/tab/BrowserTab.h"
#include "shell/window/MainWindow.h"

namespace velder::test {

namespace {

// GTK and the engine start once per test process.
class ShellEnvironment : public ::testing::Environment {
public:
    void SetUp() override
    {
        std::string error;
        ASSERT_TRUE(VLDEngineRuntime::start({ "velder-tests" }, &error)) << error;
    }
};

[[maybe_unused]] auto* environment = ::testing::AddGlobalTestEnvironment(new ShellEnvironment());

} // namespace

ShellTest::ShellTest(bool fakeViews)
{
    FaviconFetcher::resetForTesting();
    WindowRegistry::shared().reset();
    AppDelegate::zoomLevel = 0;
    if (fakeViews) {
        FakeBrowserView::install();
    } else {
        BrowserTab::setViewFactory(nullptr);
        Launcher::wireServices();
    }
    delegate = std::make_unique<AppDelegate>();
}

ShellTest::~ShellTest()
{
    WindowRegistry::shared().reset();
    delegate.reset();
    runMainLoopFor(std::chrono::milliseconds(20)); // let posted work of closed windows run
}

std::shared_ptr<FakeBrowserView> ShellTest::fakeViewOf(const BrowserTab& tab) const
{
    return std::dynamic_pointer_cast<FakeBrowserView>(tab.view());
}

std::shared_ptr<MainWindow> ShellTest::windowWith(const std::vector<std::string>& urls, bool isPrivate) const
{
    auto window = MainWindow::create(WindowFrame::defaultFrame(), isPrivate, false);
    WindowRegistry::shared().windows.push_back(window);
    for (const auto& url : urls) {
        auto tab = BrowserTab::create(url, isPrivate);
        fakeViewOf(*tab)->attachBrowser();
        window->install(tab, false);
    }
    return window;
}

} // namespace velder::test
