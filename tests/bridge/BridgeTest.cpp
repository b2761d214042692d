#include "BridgeTest.h"

#include <algorithm>

namespace velder::test {

bool RecordingDelegate::hasEvent(const std::string& event) const
{
    return std::find(events.begin(), events.end(), event) != events.end();
}

bool RecordingDelegate::sawAddress(const std::string& url) const
{
    return std::find(addresses.begin(), addresses.end(), url) != addresses.end();
}

bool RecordingDelegate::isIdleAt(const std::string& url) const
{
    return !addresses.empty() && addresses.back() == url && !loadingStates.empty() && !loadingStates.back().isLoading;
}

namespace {

bool engineStarted = false;

} // namespace

bool BridgeTest::engineWasStartedInThisProcess()
{
    return engineStarted;
}

void BridgeTest::noteEngineStarted()
{
    engineStarted = true;
}

int BridgeTest::freeLoopbackPort()
{
    GSocket* socket = g_socket_new(G_SOCKET_FAMILY_IPV4, G_SOCKET_TYPE_STREAM, G_SOCKET_PROTOCOL_TCP, nullptr);
    GInetAddress* loopback = g_inet_address_new_loopback(G_SOCKET_FAMILY_IPV4);
    GSocketAddress* address = g_inet_socket_address_new(loopback, 0);
    g_socket_bind(socket, address, TRUE, nullptr);
    GSocketAddress* bound = g_socket_get_local_address(socket, nullptr);
    int port = g_inet_socket_address_get_port(G_INET_SOCKET_ADDRESS(bound));
    g_object_unref(bound);
    g_object_unref(address);
    g_object_unref(loopback);
    g_socket_close(socket, nullptr);
    g_object_unref(socket);
    return port;
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
    return waitFor([&] { return delegate.isIdleAt(url); });
}

WebKitWebView* BridgeTest::webViewOf(VLDBrowserView& view)
{
    GtkWidget* webView = static_cast<VLDBrowserViewImpl&>(view).webView();
    return webView ? WEBKIT_WEB_VIEW(webView) : nullptr;
}

namespace {

using ScriptFinish = JSCValue* (*)(WebKitWebView*, GAsyncResult*, GError**);

struct ScriptResult {
    ScriptFinish finish = nullptr;
    bool done = false;
    std::string text;
};

void onScriptResult(GObject* source, GAsyncResult* asyncResult, gpointer data)
{
    std::unique_ptr<std::shared_ptr<ScriptResult>> owned(static_cast<std::shared_ptr<ScriptResult>*>(data));
    ScriptResult& result = **owned;
    GError* error = nullptr;
    JSCValue* value = result.finish(WEBKIT_WEB_VIEW(source), asyncResult, &error);
    if (value) {
        char* text = jsc_value_to_string(value);
        result.text = text ? text : "";
        g_free(text);
        g_object_unref(value);
    } else {
        result.text = std::string("<error: ") + (error ? error->message : "") + ">";
        g_clear_error(&error);
    }
    result.done = true;
}

// Starts a script with the callback and data given, and waits for its value as text. The result is shared
// with the callback, which may come after a timeout.
std::string waitForScript(const std::function<void(GAsyncReadyCallback, gpointer)>& start, ScriptFinish finish)
{
    auto result = std::make_shared<ScriptResult>();
    result->finish = finish;
    start(onScriptResult, new std::shared_ptr<ScriptResult>(result));
    if (!runMainLoopUntil([&] { return result->done; }, 10s)) {
        return "<timeout>";
    }
    return result->text;
}

} // namespace

std::string BridgeTest::evaluate(VLDBrowserView& view, const std::string& script)
{
    WebKitWebView* webView = webViewOf(view);
    if (!webView) {
        return "<no browser>";
    }
    return waitForScript(
        [&](GAsyncReadyCallback callback, gpointer data) {
            webkit_web_view_evaluate_javascript(webView, script.c_str(), -1, nullptr, nullptr, nullptr, callback, data);
        },
        webkit_web_view_evaluate_javascript_finish);
}

std::string BridgeTest::callInWorld(VLDBrowserView& view, const std::string& functionBody, const char* world)
{
    WebKitWebView* webView = webViewOf(view);
    if (!webView) {
        return "<no browser>";
    }
    return waitForScript(
        [&](GAsyncReadyCallback callback, gpointer data) {
            webkit_web_view_call_async_javascript_function(
                webView, functionBody.c_str(), -1, nullptr, world, nullptr, nullptr, callback, data);
        },
        webkit_web_view_call_async_javascript_function_finish);
}

bool BridgeTest::clickElement(
    VLDBrowserView& view, const std::string& selector, unsigned button, std::initializer_list<unsigned> modifiers)
{
    WebKitWebView* webView = webViewOf(view);
    if (!webView || !waitFor([&] { return gtk_widget_get_mapped(GTK_WIDGET(webView)); })) {
        return false;
    }
    std::string where = evaluate(view,
        "(() => { const e = document.querySelector('" + selector
            + "'); if (!e) return ''; const r = e.getBoundingClientRect();"
              " return Math.round(r.left + r.width / 2) + ',' + Math.round(r.top + r.height / 2); })()");
    size_t comma = where.find(',');
    if (comma == std::string::npos) {
        ADD_FAILURE() << "no element " << selector << ": " << where;
        return false;
    }
    double x = std::stod(where.substr(0, comma));
    double y = std::stod(where.substr(comma + 1));
    RealInput::click(GTK_WIDGET(webView), x, y, button, modifiers);
    return true;
}

bool BridgeTest::waitForScriptValue(VLDBrowserView& view, const std::string& script, const std::string& expected)
{
    auto deadline = std::chrono::steady_clock::now() + 10s;
    while (std::chrono::steady_clock::now() < deadline) {
        if (evaluate(view, script) == expected) {
            return true;
        }
        runMainLoopFor(50ms);
    }
    return false;
}

} // namespace velder::test
