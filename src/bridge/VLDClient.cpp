#include "bridge/VLDClient.h"

#include "bridge/VLDBrowserViewImpl.h"
#include "bridge/VLDInternalAddress.h"
#include "bridge/VLDMainThread.h"
#include "bridge/VLDNetworkErrors.h"
#include "bridge/VLDPageProcess.h"
#include "bridge/VLDPageScripts.h"
#include "bridge/VLDPermissionBridge.h"
#include "bridge/VLDRequestContextImpl.h"
#include "core/Log.h"
#include "glib/GCharPtr.h"

#include <optional>
#include <unordered_map>
#include <webkit/webkit.h>

namespace velder {

namespace {

std::unordered_map<std::uint64_t, std::weak_ptr<VLDBrowserViewImpl>>& viewTable()
{
    static std::unordered_map<std::uint64_t, std::weak_ptr<VLDBrowserViewImpl>> table;
    return table;
}

GQuark identifierQuark()
{
    static GQuark quark = g_quark_from_static_string("velder-view-identifier");
    return quark;
}

// Every handler gets the view's identifier as its data, so that a view that has gone is simply not found.
std::shared_ptr<VLDBrowserViewImpl> viewFor(gpointer data)
{
    return VLDClient::viewForIdentifier(GPOINTER_TO_SIZE(data));
}

std::string uriOf(WebKitWebView* webView)
{
    const char* uri = webkit_web_view_get_uri(webView);
    return uri ? uri : "";
}

// Display and load reports

void reportLoadingState(WebKitWebView* webView, gpointer data)
{
    if (auto view = viewFor(data)) {
        view->reportLoadingState(webkit_web_view_is_loading(webView), webkit_web_view_can_go_back(webView),
            webkit_web_view_can_go_forward(webView));
    }
}

void onIsLoading(WebKitWebView* webView, GParamSpec*, gpointer data)
{
    reportLoadingState(webView, data);
}

// A same-document change (a fragment, pushState) moves the address without a load; a new document's
// address is reported when it commits.
void onURI(WebKitWebView* webView, GParamSpec*, gpointer data)
{
    auto view = viewFor(data);
    if (view && !webkit_web_view_is_loading(webView)) {
        view->reportAddress(uriOf(webView));
    }
}

void onTitle(WebKitWebView* webView, GParamSpec*, gpointer data)
{
    if (auto view = viewFor(data)) {
        const char* title = webkit_web_view_get_title(webView);
        view->reportTitle(title ? title : "");
    }
}

void onBackForwardListChanged(WebKitBackForwardList*, WebKitBackForwardListItem*, gpointer, gpointer data)
{
    if (auto view = viewFor(data); view && view->webView()) {
        reportLoadingState(WEBKIT_WEB_VIEW(view->webView()), data);
    }
}

void onLoadChanged(WebKitWebView* webView, WebKitLoadEvent event, gpointer data)
{
    auto view = viewFor(data);
    if (!view) {
        return;
    }
    switch (event) {
    case WEBKIT_LOAD_STARTED:
        view->redirectCount = 0;
        break;
    case WEBKIT_LOAD_REDIRECTED:
        ++view->redirectCount;
        break;
    case WEBKIT_LOAD_COMMITTED: {
        std::string uri = uriOf(webView);
        view->notePageIdentifier(webkit_web_view_get_page_id(webView));
        VLDPageProcess::pageWentOrCommitted(view->identifier());
        view->setCommittedURL(uri);
        view->selectionText.clear();
        // The engine never withdraws a permission request: a new document stands for it.
        VLDPermissionBridge::withdrawParkedRequests(view);
        view->reportAddress(uri);
        break;
    }
    case WEBKIT_LOAD_FINISHED:
        // A pushState during the load changed the address without a report.
        if (std::string uri = uriOf(webView); uri != view->currentURL()) {
            view->reportAddress(uri);
        }
        break;
    }
}

gboolean onLoadFailed(WebKitWebView*, WebKitLoadEvent event, const char* failingURI, GError* error, gpointer data)
{
    if (auto view = viewFor(data)) {
        std::int32_t code
            = VLDNetworkErrors::codeForLoadError(error, event == WEBKIT_LOAD_COMMITTED, view->redirectCount);
        if (code != VLDNetworkErrors::aborted) {
            if (auto delegate = view->delegate()) {
                delegate->didFailLoad(*view, code, error ? error->message : "", failingURI ? failingURI : "");
            }
        }
    }
    // Handled: the engine's own error page never shows; the window layer shows Velder's.
    return TRUE;
}

gboolean onTLSErrors(
    WebKitWebView*, const char* failingURI, GTlsCertificate*, GTlsCertificateFlags flags, gpointer data)
{
    // Never accepted, and no exception is remembered: the load fails, and the owner hears why.
    if (auto view = viewFor(data)) {
        std::int32_t code = VLDNetworkErrors::codeForCertificateFlags(flags);
        std::string url = failingURI ? failingURI : "";
        if (auto delegate = view->delegate()) {
            delegate->didRefuseCertificate(*view, url, code);
        }
        if (auto delegate = view->delegate()) {
            delegate->didFailLoad(*view, code, "Unacceptable TLS certificate", url);
        }
    }
    return TRUE;
}

void onWebProcessTerminated(WebKitWebView*, WebKitWebProcessTerminationReason reason, gpointer data)
{
    auto view = viewFor(data);
    if (!view) {
        return;
    }
    VLDPermissionBridge::withdrawParkedRequests(view);
    std::int64_t status = VLDRenderProcessStatus::crashed;
    if (reason == WEBKIT_WEB_PROCESS_EXCEEDED_MEMORY_LIMIT) {
        status = VLDRenderProcessStatus::outOfMemory;
    } else if (reason == WEBKIT_WEB_PROCESS_TERMINATED_BY_API) {
        status = VLDRenderProcessStatus::wasKilled;
    }
    if (auto delegate = view->delegate()) {
        delegate->didTerminateRenderProcess(*view, status);
    }
}

// Navigation decisions

// A click that asks for a new tab of its own: middle or Ctrl (background, foreground with Shift), or Shift
// alone (a new window). The value is whether the tab comes to the front. What a page itself aims at a new
// window (target=_blank, a named target, window.open, a form) takes the popup road instead, so the new tab
// gets the engine's own view for the request: a POST keeps its body, and the page keeps its opener.
std::optional<bool> newTabDisposition(WebKitNavigationAction* action)
{
    bool linkClicked = webkit_navigation_action_get_navigation_type(action) == WEBKIT_NAVIGATION_TYPE_LINK_CLICKED;
    guint modifiers = webkit_navigation_action_get_modifiers(action);
    bool middle = webkit_navigation_action_get_mouse_button(action) == 2;
    bool control = modifiers & GDK_CONTROL_MASK;
    bool shift = modifiers & GDK_SHIFT_MASK;
    if (linkClicked && (middle || control)) {
        return shift;
    }
    if (linkClicked && shift) {
        return true;
    }
    return std::nullopt;
}

gboolean decideNavigation(
    const std::shared_ptr<VLDBrowserViewImpl>& view, WebKitPolicyDecision* decision, WebKitPolicyDecisionType type)
{
    WebKitNavigationAction* action
        = webkit_navigation_policy_decision_get_navigation_action(WEBKIT_NAVIGATION_POLICY_DECISION(decision));
    std::string url = webkit_uri_request_get_uri(webkit_navigation_action_get_request(action));
    if (auto foreground = newTabDisposition(action)) {
        if (!VLDInternalAddress::pageMayOpen(view->committedURL(), url)) {
            webkit_policy_decision_ignore(decision);
            return TRUE;
        }
        auto delegate = view->delegate();
        if (delegate && delegate->openURLInNewTab(*view, url, *foreground)) {
            webkit_policy_decision_ignore(decision);
            return TRUE;
        }
    }
    if (type == WEBKIT_POLICY_DECISION_TYPE_NEW_WINDOW_ACTION) {
        // The new window itself is decided when the engine asks for it.
        return FALSE;
    }
    bool isRedirect = webkit_navigation_action_is_redirect(action);
    if (VLDInternalAddress::isInternal(url) && !view->takeOwnNavigation(url)
        && !VLDInternalAddress::mayNavigate(view->committedURL(), url, isRedirect)) {
        log(VLDInternalAddress::refusalLine(url));
        webkit_policy_decision_ignore(decision);
        return TRUE;
    }
    view->rememberNavigation({ url, static_cast<bool>(webkit_navigation_action_is_user_gesture(action)), isRedirect });
    return FALSE;
}

// The engine's navigation decisions don't say which frame navigates; its response decisions do. So the
// owner decides on a main-frame navigation when its response arrives.
gboolean decideResponse(const std::shared_ptr<VLDBrowserViewImpl>& view, WebKitPolicyDecision* decision)
{
    auto* responseDecision = WEBKIT_RESPONSE_POLICY_DECISION(decision);
    if (!webkit_response_policy_decision_is_main_frame_main_resource(responseDecision)) {
        return FALSE;
    }
    auto delegate = view->delegate();
    if (!delegate) {
        return FALSE;
    }
    std::string url = webkit_uri_request_get_uri(webkit_response_policy_decision_get_request(responseDecision));
    auto record = view->navigationFor(url);
    if (!delegate->shouldAllowNavigation(*view, url, record.isUserGesture, record.isRedirect)) {
        webkit_policy_decision_ignore(decision);
        return TRUE;
    }
    return FALSE;
}

gboolean onDecidePolicy(WebKitWebView*, WebKitPolicyDecision* decision, WebKitPolicyDecisionType type, gpointer data)
{
    auto view = viewFor(data);
    if (!view) {
        return FALSE;
    }
    switch (type) {
    case WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION:
    case WEBKIT_POLICY_DECISION_TYPE_NEW_WINDOW_ACTION:
        return decideNavigation(view, decision, type);
    case WEBKIT_POLICY_DECISION_TYPE_RESPONSE:
        return decideResponse(view, decision);
    }
    return FALSE;
}

// Life span

// A page opens a window: the owner supplies a popup host (a tab of the opener's window), and the engine's
// new view, related to the opener and so in its session, becomes that host's browser.
GtkWidget* onCreate(WebKitWebView* webView, WebKitNavigationAction* action, gpointer data)
{
    auto opener = viewFor(data);
    if (!opener) {
        return nullptr;
    }
    std::string url = webkit_uri_request_get_uri(webkit_navigation_action_get_request(action));
    if (!VLDInternalAddress::pageMayOpen(opener->committedURL(), url)) {
        return nullptr;
    }
    auto delegate = opener->delegate();
    if (!delegate) {
        return nullptr;
    }
    auto host = std::dynamic_pointer_cast<VLDBrowserViewImpl>(
        delegate->hostViewForPopup(*opener, url, webkit_navigation_action_is_user_gesture(action)));
    if (!host || !host->isPopupHost() || host->hasBrowser()) {
        return nullptr;
    }
    // A related view shares neither settings nor content manager with its opener: both are given here.
    GObject* contentManager = VLDPageScripts::newContentManager();
    GtkWidget* popup = GTK_WIDGET(g_object_new(WEBKIT_TYPE_WEB_VIEW, "related-view", webView, "settings",
        webkit_web_view_get_settings(webView), "user-content-manager", contentManager, nullptr));
    g_object_unref(contentManager);
    if (VLDInternalAddress::isInternal(url)) {
        // A velder:// page opened it: the popup's first load is the opener's, and may go on.
        host->expectOwnNavigation(url);
    }
    host->attachPopupBrowser(popup, opener);
    if (auto openerDelegate = opener->delegate()) {
        openerDelegate->didCreatePopup(*opener, *host);
    }
    // The engine loads the popup's address into it itself.
    return popup;
}

void onClose(WebKitWebView*, gpointer data)
{
    if (auto view = viewFor(data)) {
        view->engineRequestedClose();
    }
}

// The engine's question whether a page being closed may leave, held until the owner answers; one dropped
// unanswered answers "stay".
class LeaveQuestion {
public:
    LeaveQuestion(WebKitScriptDialog* dialog, std::uint64_t view)
        : m_dialog(webkit_script_dialog_ref(dialog))
        , m_view(view)
    {
    }
    LeaveQuestion(const LeaveQuestion&) = delete;
    LeaveQuestion& operator=(const LeaveQuestion&) = delete;
    ~LeaveQuestion() { answer(false); }

    void answer(bool leave)
    {
        if (!m_dialog) {
            return;
        }
        webkit_script_dialog_confirm_set_confirmed(m_dialog, leave);
        // Closing gives the answer to the engine and lets go of the reference taken for it.
        webkit_script_dialog_close(std::exchange(m_dialog, nullptr));
        auto view = VLDClient::viewForIdentifier(m_view);
        if (view && leave) {
            // The engine closes a page let go after asking, but not every time (not after two refusals, for
            // one): the user's answer is the close.
            view->engineRequestedClose();
        }
        auto delegate = view ? view->delegate() : nullptr;
        if (!leave && delegate) {
            delegate->didKeepPageOnClose(*view);
        }
    }

private:
    WebKitScriptDialog* m_dialog;
    std::uint64_t m_view;
};

gboolean onScriptDialog(WebKitWebView*, WebKitScriptDialog* dialog, gpointer data)
{
    if (webkit_script_dialog_get_dialog_type(dialog) != WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM) {
        return FALSE;
    }
    auto view = viewFor(data);
    if (!view || !view->answerBeforeUnload()) {
        return FALSE;
    }
    // Asked, and answered, on a later turn: the engine takes no answer from inside its own signal.
    auto question = std::make_shared<LeaveQuestion>(dialog, view->identifier());
    VLDPostToMainThread([question, identifier = view->identifier()] {
        auto view = VLDClient::viewForIdentifier(identifier);
        auto delegate = view ? view->delegate() : nullptr;
        if (delegate) {
            delegate->shouldLeavePage(*view, [question](bool leave) { question->answer(leave); });
        }
    });
    return TRUE;
}

gboolean onPermissionRequest(WebKitWebView*, WebKitPermissionRequest* request, gpointer data)
{
    if (auto view = viewFor(data)) {
        VLDPermissionBridge::handleRequest(view, G_OBJECT(request));
        return TRUE;
    }
    // No view: the engine's default, a denial.
    return FALSE;
}

gboolean onQueryPermissionState(WebKitWebView*, WebKitPermissionStateQuery* query, gpointer data)
{
    auto view = viewFor(data);
    return view && VLDPermissionBridge::answerStateQuery(view, query);
}

// The pointer moved onto or off a link: the owner shows where the link goes.
void onMouseTarget(WebKitWebView*, WebKitHitTestResult* hit, guint, gpointer data)
{
    auto view = viewFor(data);
    auto delegate = view ? view->delegate() : nullptr;
    if (!delegate) {
        return;
    }
    const char* link = webkit_hit_test_result_context_is_link(hit) ? webkit_hit_test_result_get_link_uri(hit) : nullptr;
    std::string url = link ? link : "";
    if (url != view->hoveredLink) {
        view->hoveredLink = url;
        delegate->didHoverLink(*view, url);
    }
}

gboolean onContextMenu(WebKitWebView* webView, WebKitContextMenu*, WebKitHitTestResult* hit, gpointer data)
{
    auto view = viewFor(data);
    auto delegate = view ? view->delegate() : nullptr;
    if (!delegate) {
        return FALSE;
    }
    VLDContextMenuInfo info;
    if (const char* link = webkit_hit_test_result_get_link_uri(hit)) {
        info.linkURL = link;
    }
    if (const char* image = webkit_hit_test_result_get_image_uri(hit)) {
        info.sourceURL = image;
    } else if (const char* media = webkit_hit_test_result_get_media_uri(hit)) {
        info.sourceURL = media;
    }
    info.pageURL = uriOf(webView);
    if (webkit_hit_test_result_context_is_selection(hit)) {
        info.selectionText = view->selectionText;
    }
    info.isEditable = webkit_hit_test_result_context_is_editable(hit);
    // True keeps the engine's menu; false leaves the owner to show its own.
    return delegate->shouldShowContextMenu(*view, info) ? FALSE : TRUE;
}

// Find

void onFoundText(WebKitFindController*, guint matchCount, gpointer data)
{
    if (auto view = viewFor(data)) {
        view->reportFindResult(matchCount);
    }
}

void onFailedToFindText(WebKitFindController*, gpointer data)
{
    if (auto view = viewFor(data)) {
        view->reportFindResult(0);
    }
}

// Messages of the page scripts

void onIconsMessage(WebKitUserContentManager*, JSCValue* value, gpointer data)
{
    auto view = viewFor(data);
    if (!view || !jsc_value_is_array(value)) {
        return;
    }
    std::vector<std::string> urls;
    JSCValue* lengthValue = jsc_value_object_get_property(value, "length");
    int length = jsc_value_to_int32(lengthValue);
    g_object_unref(lengthValue);
    for (int i = 0; i < length; ++i) {
        JSCValue* item = jsc_value_object_get_property_at_index(value, static_cast<guint>(i));
        if (jsc_value_is_string(item)) {
            GCharPtr text(jsc_value_to_string(item));
            urls.push_back(toString(text));
        }
        g_object_unref(item);
    }
    if (auto delegate = view->delegate()) {
        delegate->didChangeFaviconURLs(*view, urls);
    }
}

void onSelectionMessage(WebKitUserContentManager*, JSCValue* value, gpointer data)
{
    if (auto view = viewFor(data); view && jsc_value_is_string(value)) {
        GCharPtr text(jsc_value_to_string(value));
        view->selectionText = toString(text);
    }
}

} // namespace

void VLDClient::registerView(const std::shared_ptr<VLDBrowserViewImpl>& view)
{
    viewTable()[view->identifier()] = view;
}

void VLDClient::unregisterView(std::uint64_t identifier)
{
    viewTable().erase(identifier);
}

std::shared_ptr<VLDBrowserViewImpl> VLDClient::viewForIdentifier(std::uint64_t identifier)
{
    auto found = viewTable().find(identifier);
    return found == viewTable().end() ? nullptr : found->second.lock();
}

std::vector<std::shared_ptr<VLDBrowserViewImpl>> VLDClient::liveViews()
{
    std::vector<std::shared_ptr<VLDBrowserViewImpl>> views;
    for (const auto& [identifier, weakView] : viewTable()) {
        if (auto view = weakView.lock()) {
            views.push_back(std::move(view));
        }
    }
    return views;
}

std::shared_ptr<VLDBrowserViewImpl> VLDClient::viewForWebView(GtkWidget* webView)
{
    gpointer identifier = g_object_get_qdata(G_OBJECT(webView), identifierQuark());
    return identifier ? viewForIdentifier(GPOINTER_TO_SIZE(identifier)) : nullptr;
}

void VLDClient::connectBrowser(GtkWidget* widget, std::uint64_t identifier)
{
    gpointer data = GSIZE_TO_POINTER(identifier);
    g_object_set_qdata(G_OBJECT(widget), identifierQuark(), data);
    WebKitWebView* webView = WEBKIT_WEB_VIEW(widget);
    g_signal_connect(webView, "notify::uri", G_CALLBACK(onURI), data);
    g_signal_connect(webView, "notify::title", G_CALLBACK(onTitle), data);
    g_signal_connect(webView, "notify::is-loading", G_CALLBACK(onIsLoading), data);
    g_signal_connect(webView, "load-changed", G_CALLBACK(onLoadChanged), data);
    g_signal_connect(webView, "load-failed", G_CALLBACK(onLoadFailed), data);
    g_signal_connect(webView, "load-failed-with-tls-errors", G_CALLBACK(onTLSErrors), data);
    g_signal_connect(webView, "web-process-terminated", G_CALLBACK(onWebProcessTerminated), data);
    g_signal_connect(webView, "decide-policy", G_CALLBACK(onDecidePolicy), data);
    g_signal_connect(webView, "create", G_CALLBACK(onCreate), data);
    g_signal_connect(webView, "close", G_CALLBACK(onClose), data);
    g_signal_connect(webView, "script-dialog", G_CALLBACK(onScriptDialog), data);
    g_signal_connect(webView, "permission-request", G_CALLBACK(onPermissionRequest), data);
    g_signal_connect(webView, "query-permission-state", G_CALLBACK(onQueryPermissionState), data);
    g_signal_connect(webView, "context-menu", G_CALLBACK(onContextMenu), data);
    g_signal_connect(webView, "mouse-target-changed", G_CALLBACK(onMouseTarget), data);
    g_signal_connect(
        webkit_web_view_get_back_forward_list(webView), "changed", G_CALLBACK(onBackForwardListChanged), data);
    WebKitFindController* find = webkit_web_view_get_find_controller(webView);
    g_signal_connect(find, "found-text", G_CALLBACK(onFoundText), data);
    g_signal_connect(find, "failed-to-find-text", G_CALLBACK(onFailedToFindText), data);
    WebKitUserContentManager* contentManager = webkit_web_view_get_user_content_manager(webView);
    std::string icons = std::string("script-message-received::") + VLDPageScripts::iconsHandler;
    std::string selection = std::string("script-message-received::") + VLDPageScripts::selectionHandler;
    g_signal_connect(contentManager, icons.c_str(), G_CALLBACK(onIconsMessage), data);
    g_signal_connect(contentManager, selection.c_str(), G_CALLBACK(onSelectionMessage), data);
}

void VLDClient::disconnectBrowser(GtkWidget* widget)
{
    gpointer data = g_object_get_qdata(G_OBJECT(widget), identifierQuark());
    if (!data) {
        return;
    }
    WebKitWebView* webView = WEBKIT_WEB_VIEW(widget);
    g_signal_handlers_disconnect_by_data(webView, data);
    g_signal_handlers_disconnect_by_data(webkit_web_view_get_back_forward_list(webView), data);
    g_signal_handlers_disconnect_by_data(webkit_web_view_get_find_controller(webView), data);
    g_signal_handlers_disconnect_by_data(webkit_web_view_get_user_content_manager(webView), data);
    g_object_set_qdata(G_OBJECT(widget), identifierQuark(), nullptr);
}

} // namespace velder
