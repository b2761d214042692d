#include "PageProbe.h"

#include "bridge/VLDBrowserViewImpl.h"
#include "support/MainLoop.h"
#include "support/RealInput.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <webkit/webkit.h>

namespace velder::test::PageProbe {

using namespace std::chrono_literals;

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

WebKitWebView* webViewOf(VLDBrowserView& view)
{
    GtkWidget* webView = static_cast<VLDBrowserViewImpl&>(view).webView();
    return webView ? WEBKIT_WEB_VIEW(webView) : nullptr;
}

std::string evaluate(VLDBrowserView& view, const std::string& script)
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

std::string callInWorld(VLDBrowserView& view, const std::string& functionBody, const char* world)
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

bool clickElement(
    VLDBrowserView& view, const std::string& selector, unsigned button, std::initializer_list<unsigned> modifiers)
{
    WebKitWebView* webView = webViewOf(view);
    if (!webView || !runMainLoopUntil([&] { return gtk_widget_get_mapped(GTK_WIDGET(webView)); }, 10s)) {
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

} // namespace velder::test::PageProbe
