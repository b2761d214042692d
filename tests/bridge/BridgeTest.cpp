#include "BridgeTest.h"

namespace velder::test {

int BridgeTest::freeLoopbackPort()
{
    return TestServer().port();
}

void BridgeTest::SetUp()
{
    engineStarted = true;
    m_profile = std::make_unique<TestProfile>();
    m_configHome = std::make_unique<ScopedEnv>("XDG_CONFIG_HOME", m_profile->root().file("config"));
    std::string error;
    ASSERT_TRUE(VLDEngineRuntime::start({ "velder" }, &error)) << error;
    m_server = std::make_unique<TestServer>();
}

void BridgeTest::TearDown()
{
    delegate.reset(); // it goes with the test's body, before its views: no report reaches what the body kept
    m_views.clear();
    for (GtkWidget* window : m_windows) {
        gtk_window_destroy(GTK_WINDOW(window));
    }
    m_windows.clear();
    VLDEngineRuntime::shutdown();
    m_server.reset();
    m_configHome.reset();
    m_profile.reset();
}

GtkWidget* BridgeTest::showInWindow(GtkWidget* child)
{
    GtkWidget* window = gtk_window_new();
    gtk_window_set_default_size(GTK_WINDOW(window), 800, 600);
    gtk_window_set_child(GTK_WINDOW(window), child);
    gtk_window_present(GTK_WINDOW(window));
    m_windows.push_back(window);
    return window;
}

std::shared_ptr<VLDBrowserView> BridgeTest::openView(const std::string& url,
    const std::shared_ptr<RecordingDelegate>& delegate, std::shared_ptr<VLDRequestContext> context)
{
    auto view = VLDBrowserView::create(url, std::move(context));
    view->setDelegate(delegate);
    m_views.push_back(view);
    showInWindow(view->widget());
    EXPECT_TRUE(view->hasBrowser());
    return view;
}

bool BridgeTest::loadAndWait(VLDBrowserView& view, RecordingDelegate& delegate, const std::string& url)
{
    view.loadURL(url);
    return runMainLoopUntil([&] { return delegate.isIdleAt(url); });
}

std::shared_ptr<VLDBrowserView> BridgeTest::openLoaded(const std::string& url,
    const std::shared_ptr<RecordingDelegate>& delegate, std::shared_ptr<VLDRequestContext> context)
{
    auto view = openView(url, delegate, std::move(context));
    EXPECT_TRUE(runMainLoopUntil([&] { return delegate->isIdleAt(url); })) << "never loaded " << url;
    return view;
}

std::string page(const std::string& title, const std::string& body, const std::string& head)
{
    return "<!doctype html><html><head><title>" + title + "</title>" + head + "</head><body>" + body + "</body></html>";
}

bool waitForScriptValue(VLDBrowserView& view, const std::string& script, const std::string& expected)
{
    return runMainLoopUntil([&] { return evaluate(view, script) == expected; });
}

} // namespace velder::test
