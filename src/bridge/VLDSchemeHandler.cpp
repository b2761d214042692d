#include "bridge/VLDSchemeHandler.h"

#include "bridge/VLDBrowserViewImpl.h"
#include "bridge/VLDClient.h"
#include "bridge/VLDMainThread.h"
#include "core/ContentPolicy.h"
#include "glib/GObjectPtr.h"

#include <webkit/webkit.h>

namespace velder {

namespace {

constexpr const char* scheme = "velder";

VLDInternalPageSource& registeredSource()
{
    static VLDInternalPageSource source;
    return source;
}

void finish(
    WebKitURISchemeRequest* request, int status, const std::string& mimeType, const std::string& body, bool withHeaders)
{
    GBytes* bytes = g_bytes_new(body.data(), body.size());
    GObjectPtr<GInputStream> stream = GObjectPtr<GInputStream>::adopt(g_memory_input_stream_new_from_bytes(bytes));
    g_bytes_unref(bytes);
    WebKitURISchemeResponse* response = webkit_uri_scheme_response_new(stream.get(), static_cast<gint64>(body.size()));
    webkit_uri_scheme_response_set_status(response, static_cast<guint>(status), nullptr);
    webkit_uri_scheme_response_set_content_type(response, mimeType.c_str());
    if (withHeaders) {
        SoupMessageHeaders* headers = soup_message_headers_new(SOUP_MESSAGE_HEADERS_RESPONSE);
        soup_message_headers_append(headers, "Content-Type", "text/html; charset=utf-8");
        soup_message_headers_append(headers, "Cache-Control", "no-store");
        soup_message_headers_append(headers, "Content-Security-Policy", ContentPolicy::internalPages().c_str());
        webkit_uri_scheme_response_set_http_headers(response, headers);
    }
    webkit_uri_scheme_request_finish_with_response(request, response);
    g_object_unref(response);
}

void answer(WebKitURISchemeRequest* request)
{
    std::string url = webkit_uri_scheme_request_get_uri(request);
    WebKitWebView* webView = webkit_uri_scheme_request_get_web_view(request);
    auto view = webView ? VLDClient::viewForWebView(GTK_WIDGET(webView)) : nullptr;
    if (view && !view->hasBrowser()) {
        view = nullptr;
    }
    // A copy: the source may register another while it runs.
    VLDInternalPageSource source = registeredSource();
    std::optional<VLDInternalPageResponse> response;
    if (source) {
        response = source(url, view.get());
    }
    if (!response) {
        finish(request, 404, "text/html", {}, false);
        return;
    }
    if (!response->redirectURL.empty()) {
        if (!view) {
            // No page to carry on in: the redirect is answered as such, and goes nowhere.
            finish(request, 302, response->mimeType, {}, false);
            return;
        }
        // The engine doesn't follow a redirect of a custom scheme. So the action's request ends as an
        // aborted load (never reported) and the view loads the target itself: the action's address never
        // commits, and neither the back list nor a reload can repeat it.
        GError* cancelled = g_error_new_literal(WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED, "Redirected");
        webkit_uri_scheme_request_finish_error(request, cancelled);
        g_error_free(cancelled);
        std::uint64_t identifier = view->identifier();
        std::string target = response->redirectURL;
        VLDPostToMainThread([identifier, target]() {
            if (auto view = VLDClient::viewForIdentifier(identifier); view && view->hasBrowser()) {
                view->loadURL(target);
            }
        });
        return;
    }
    finish(request, response->statusCode, response->mimeType, response->body, true);
}

void onSchemeRequest(WebKitURISchemeRequest* request, gpointer)
{
    // Never answered inside the engine's call: the source runs as an ordinary turn of the main loop.
    g_object_ref(request);
    VLDPostToMainThread([request]() {
        answer(request);
        g_object_unref(request);
    });
}

} // namespace

void VLDSchemeHandler::registerScheme()
{
    static bool registered = false;
    if (registered) {
        return;
    }
    registered = true;
    WebKitWebContext* context = webkit_web_context_get_default();
    webkit_web_context_register_uri_scheme(context, scheme, onSchemeRequest, nullptr, nullptr);
    WebKitSecurityManager* security = webkit_web_context_get_security_manager(context);
    webkit_security_manager_register_uri_scheme_as_secure(security, scheme);
    webkit_security_manager_register_uri_scheme_as_display_isolated(security, scheme);
}

void VLDSchemeHandler::setSource(VLDInternalPageSource source)
{
    registeredSource() = std::move(source);
}

} // namespace velder
