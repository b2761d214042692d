#include "ShellTest.h"

#include "bridge/VLDEngineRuntime.h"
#include "core/FaviconFetcher.h"
#include "core/LocationSettings.h"
#include "shell/BrowserTab.h"
#include "shell/MainWindow.h"

#include <thread>

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

bool spinUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout)
{
    auto deadline = std::chrono::steady_clock::now() + timeout;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return condition();
        }
        if (!g_main_context_iteration(nullptr, false)) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    }
    return true;
}

void spinFor(std::chrono::milliseconds duration)
{
    auto deadline = std::chrono::steady_clock::now() + duration;
    spinUntil([&] { return std::chrono::steady_clock::now() >= deadline; }, duration + std::chrono::seconds(1));
}

ShellTest::ShellTest(bool fakeViews)
{
    Vault::setShared(std::make_shared<Vault>(profile.root().file("vault.bin"), testDataKey()));
    FaviconStore::setShared(std::make_shared<FaviconStore>(profile.root().file("favicons.bin"), testDataKey()));
    HistoryStore::setShared(std::make_shared<HistoryStore>(profile.root().file("history.bin"), testDataKey()));
    FaviconFetcher::resetForTesting();
    WindowRegistry::shared().reset();
    AppDelegate::zoomLevel = 0;
    if (fakeViews) {
        FakeBrowserView::made().clear();
        FakeBrowserView::install();
    } else {
        BrowserTab::setViewFactory(nullptr);
    }
    delegate = std::make_unique<AppDelegate>();
}

ShellTest::~ShellTest()
{
    WindowRegistry::shared().reset();
    delegate.reset();
    spinFor(std::chrono::milliseconds(20)); // let posted work of closed windows run
}

std::shared_ptr<FakeBrowserView> ShellTest::fakeView(std::size_t index) const
{
    auto& made = FakeBrowserView::made();
    return index < made.size() ? made[index].lock() : nullptr;
}

std::shared_ptr<FakeBrowserView> ShellTest::fakeViewOf(const BrowserTab& tab) const
{
    return std::dynamic_pointer_cast<FakeBrowserView>(tab.view());
}

} // namespace velder::test
