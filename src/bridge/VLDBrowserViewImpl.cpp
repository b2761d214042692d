#include "bridge/VLDBrowserViewImpl.h"

#include "bridge/VLDClient.h"
#include "bridge/VLDEngineRuntime.h"
#include "bridge/VLDHostWidget.h"
#include "bridge/VLDIconFetch.h"
#include "bridge/VLDKeyCodes.h"
#include "bridge/VLDMainThread.h"
#include "bridge/VLDPageProcess.h"
#include "bridge/VLDPageScripts.h"
#include "bridge/VLDPermissionBridge.h"
#include "bridge/VLDRequestContextImpl.h"

#include <algorithm>
#include <cmath>
#include <webkit/webkit.h>

namespace velder {

namespace {

std::uint64_t nextViewIdentifier = 1;

// A page that never answers a close request is closed anyway after this long.
std::chrono::milliseconds closeLimit = std::chrono::seconds(5);

// Keys typed quickly are all offered before the first comes round again unhandled.
constexpr size_t rememberedKeyEvents = 16;

// Enough of the latest navigation decisions to find the one a main-frame response belongs to.
constexpr size_t rememberedNavigations = 16;

// Zoom levels are steps of 20 %, compounded.
double zoomFactor(double level)
{
    return std::pow(1.2, level);
}

WebKitWebView* asWebView(GtkWidget* widget)
{
    return WEBKIT_WEB_VIEW(widget);
}

void onHostRooted(std::uint64_t identifier)
{
    if (auto view = VLDClient::viewForIdentifier(identifier)) {
        view->hostWasRooted();
    }
}

void onDataCleared(GObject* manager, GAsyncResult* result, gpointer)
{
    webkit_website_data_manager_clear_finish(WEBKIT_WEBSITE_DATA_MANAGER(manager), result, nullptr);
}

} // namespace

std::shared_ptr<VLDBrowserView> VLDBrowserView::create(
    const std::string& url, std::shared_ptr<VLDRequestContext> context)
{
    auto view
        = std::make_shared<VLDBrowserViewImpl>(url, std::dynamic_pointer_cast<VLDRequestContextImpl>(context), true);
    VLDClient::registerView(view);
    return view;
}

std::shared_ptr<VLDBrowserView> VLDBrowserView::popupHostView()
{
    auto view = std::make_shared<VLDBrowserViewImpl>(std::string(), nullptr, false);
    VLDClient::registerView(view);
    return view;
}

std::shared_ptr<VLDBrowserView> VLDBrowserView::viewForIdentifier(std::uint64_t identifier)
{
    return VLDClient::viewForIdentifier(identifier);
}

VLDBrowserViewImpl::VLDBrowserViewImpl(
    std::string url, std::shared_ptr<VLDRequestContextImpl> context, bool createsOwnBrowser)
    : m_identifier(nextViewIdentifier++)
    , m_processGroup(m_identifier)
    , m_context(std::move(context))
    , m_pendingURL(std::move(url))
    , m_createsOwnBrowser(createsOwnBrowser)
{
    m_host = GObjectPtr<GtkWidget>::adopt(VLDHostWidgetNew(m_identifier, onHostRooted));
    // In the capture phase the owner sees a key before the page does.
    GtkEventController* keys = gtk_event_controller_key_new();
    gtk_event_controller_set_propagation_phase(keys, GTK_PHASE_CAPTURE);
    g_signal_connect(keys, "key-pressed", G_CALLBACK(keyPressed), GSIZE_TO_POINTER(m_identifier));
    gtk_widget_add_controller(m_host.get(), keys);
    // A press in the page moves where the engine's next find step starts from; the press itself goes on.
    GtkEventController* presses = gtk_event_controller_legacy_new();
    gtk_event_controller_set_propagation_phase(presses, GTK_PHASE_CAPTURE);
    g_signal_connect(presses, "event", G_CALLBACK(+[](GtkEventControllerLegacy*, GdkEvent* event, gpointer data) {
        auto view = VLDClient::viewForIdentifier(GPOINTER_TO_SIZE(data));
        if (view && gdk_event_get_event_type(event) == GDK_BUTTON_PRESS) {
            view->m_findLostItsPlace = true;
        }
        return FALSE;
    }),
        GSIZE_TO_POINTER(m_identifier));
    gtk_widget_add_controller(m_host.get(), presses);
}

VLDBrowserViewImpl::~VLDBrowserViewImpl()
{
    cancelCloseTimeout();
    VLDPageProcess::pageWentOrCommitted(m_identifier);
    if (m_webView) {
        // Let go without a close: the page goes with its last reference, and what it asked is denied.
        VLDClient::disconnectBrowser(m_webView.get());
        gtk_widget_unparent(m_webView.get());
        VLDPermissionBridge::answerParkedPermissions(m_identifier);
        m_webView.reset();
    }
    forgetKeyEvents();
    VLDClient::unregisterView(m_identifier);
}

void VLDBrowserViewImpl::hostWasRooted()
{
    if (m_created || !m_createsOwnBrowser) {
        return;
    }
    m_created = true;
    createBrowser();
}

void VLDBrowserViewImpl::createBrowser()
{
    if (!m_context) {
        m_context = std::dynamic_pointer_cast<VLDRequestContextImpl>(VLDRequestContext::globalContext());
    }
    if (!m_context) {
        // The engine isn't running: there is nothing to create a browser in.
        return;
    }
    VLDPageProcess::Placement placement = VLDPageProcess::place(*this, m_pendingURL);
    m_processGroup = placement.processGroup;
    attachBrowser(placement.webView);
}

void VLDBrowserViewImpl::attachPopupBrowser(GtkWidget* webView, const std::shared_ptr<VLDBrowserViewImpl>& opener)
{
    m_created = true;
    m_context = opener->requestContext();
    m_processGroup = opener->processGroup();
    attachBrowser(webView);
}

void VLDBrowserViewImpl::notePageIdentifier(std::uint64_t pageIdentifier)
{
    if (m_pageIdentifier != 0 && pageIdentifier != m_pageIdentifier) {
        m_processGroup = m_identifier;
    }
    m_pageIdentifier = pageIdentifier;
}

void VLDBrowserViewImpl::attachBrowser(GtkWidget* webView)
{
    m_webView = GObjectPtr<GtkWidget>::adopt(webView);
    VLDClient::connectBrowser(webView, m_identifier);
    gtk_widget_set_parent(webView, m_host.get());
    // A URL or zoom given before the browser existed takes effect now.
    if (!m_pendingURL.empty()) {
        loadURL(std::exchange(m_pendingURL, std::string()));
    }
    if (m_zoomLevel != 0.0) {
        webkit_web_view_set_zoom_level(asWebView(webView), zoomFactor(m_zoomLevel));
    }
    if (auto delegate = this->delegate()) {
        delegate->didCreateBrowser(*this);
    }
}

void VLDBrowserViewImpl::setZoomLevel(double level)
{
    m_zoomLevel = level;
    if (m_webView) {
        webkit_web_view_set_zoom_level(asWebView(m_webView.get()), zoomFactor(level));
    }
}

void VLDBrowserViewImpl::navigate(const std::string& expectedURL, const std::function<void()>& command)
{
    expectOwnNavigation(expectedURL);
    command();
}

void VLDBrowserViewImpl::loadURL(const std::string& url)
{
    if (url.empty()) {
        return;
    }
    if (!m_webView) {
        m_pendingURL = url;
        return;
    }
    WebKitWebView* webView = asWebView(m_webView.get());
    webkit_web_view_load_uri(webView, url.c_str());
    // The engine's own spelling of the address, as its navigation decision will carry it. A view that has
    // never loaded anything may not spell it yet.
    const char* pending = webkit_web_view_get_uri(webView);
    expectOwnNavigation(pending && *pending ? pending : url);
}

void VLDBrowserViewImpl::goBack()
{
    if (!m_webView) {
        return;
    }
    WebKitWebView* webView = asWebView(m_webView.get());
    WebKitBackForwardListItem* item
        = webkit_back_forward_list_get_back_item(webkit_web_view_get_back_forward_list(webView));
    navigate(
        item ? webkit_back_forward_list_item_get_uri(item) : "", [webView]() { webkit_web_view_go_back(webView); });
}

void VLDBrowserViewImpl::goForward()
{
    if (!m_webView) {
        return;
    }
    WebKitWebView* webView = asWebView(m_webView.get());
    WebKitBackForwardListItem* item
        = webkit_back_forward_list_get_forward_item(webkit_web_view_get_back_forward_list(webView));
    navigate(
        item ? webkit_back_forward_list_item_get_uri(item) : "", [webView]() { webkit_web_view_go_forward(webView); });
}

void VLDBrowserViewImpl::reload()
{
    if (!m_webView) {
        return;
    }
    WebKitWebView* webView = asWebView(m_webView.get());
    const char* uri = webkit_web_view_get_uri(webView);
    navigate(uri ? uri : "", [webView]() { webkit_web_view_reload(webView); });
}

void VLDBrowserViewImpl::reloadIgnoringCache()
{
    if (!m_webView) {
        return;
    }
    WebKitWebView* webView = asWebView(m_webView.get());
    const char* uri = webkit_web_view_get_uri(webView);
    navigate(uri ? uri : "", [webView]() { webkit_web_view_reload_bypass_cache(webView); });
}

void VLDBrowserViewImpl::stopLoading()
{
    if (!m_webView) {
        return;
    }
    m_ownNavigation.clear();
    webkit_web_view_stop_loading(asWebView(m_webView.get()));
}

void VLDBrowserViewImpl::setBrowserFocus(bool focus)
{
    if (!m_webView) {
        return;
    }
    if (focus) {
        gtk_widget_grab_focus(m_webView.get());
        return;
    }
    GtkRoot* root = gtk_widget_get_root(m_webView.get());
    GtkWidget* focused = root ? gtk_root_get_focus(root) : nullptr;
    if (focused && (focused == m_webView.get() || gtk_widget_is_ancestor(focused, m_webView.get()))) {
        gtk_root_set_focus(root, nullptr);
    }
}

void VLDBrowserViewImpl::findText(const std::string& text, bool forward, bool matchCase, bool findNext)
{
    if (!m_webView) {
        return;
    }
    WebKitWebView* webView = asWebView(m_webView.get());
    WebKitFindController* find = webkit_web_view_get_find_controller(webView);
    m_findForward = forward;
    // After a press in the page the engine would step on from the press, to a match the count can't name:
    // the step starts the search afresh from the top (or the bottom, backwards) instead.
    bool inPlace = !std::exchange(m_findLostItsPlace, false);
    if (findNext && inPlace && text == m_findText && matchCase == m_findMatchCase && m_findCounter.count() > 0) {
        m_findIsNewSearch = false;
        if (forward) {
            webkit_find_controller_search_next(find);
        } else {
            webkit_find_controller_search_previous(find);
        }
        return;
    }
    m_findText = text;
    m_findMatchCase = matchCase;
    m_findIsNewSearch = true;
    if (text.empty()) {
        webkit_find_controller_search_finish(find);
        reportFindResult(0);
        return;
    }
    // The engine searches on from the selection, or from where the page was last pressed: a caret put at
    // the top (the bottom, backwards) makes the first match found the first of the page, as the count says.
    // The script goes to the page before the search does, in an isolated world the page can't touch.
    std::string caret
        = std::string("(() => { const root = document.body || document.documentElement; if (!root) return;"
                      " const range = document.createRange(); range.selectNodeContents(root);"
                      " range.collapse(")
        + (forward ? "true" : "false") + "); getSelection().removeAllRanges(); getSelection().addRange(range); })()";
    webkit_web_view_evaluate_javascript(webView, caret.c_str(), -1, "velder-find", nullptr, nullptr, nullptr, nullptr);
    guint options = WEBKIT_FIND_OPTIONS_WRAP_AROUND;
    if (!matchCase) {
        options |= WEBKIT_FIND_OPTIONS_CASE_INSENSITIVE;
    }
    if (!forward) {
        options |= WEBKIT_FIND_OPTIONS_BACKWARDS;
    }
    webkit_find_controller_search(find, text.c_str(), options, VLDFindCounter::maximumCount);
}

void VLDBrowserViewImpl::reportFindResult(unsigned matchCount)
{
    if (m_findIsNewSearch) {
        m_findIsNewSearch = false;
        m_findCounter.startSearch(matchCount, m_findForward);
    } else if (matchCount == 0) {
        m_findCounter.reset();
    } else {
        // A step reports a count of one, not the total: the bridge keeps counting.
        m_findCounter.step(m_findForward);
    }
    if (auto delegate = this->delegate()) {
        delegate->didFindMatchCount(*this, m_findCounter.count(), m_findCounter.activeMatch(), true);
    }
}

void VLDBrowserViewImpl::stopFindingAndClearSelection(bool clearSelection)
{
    if (!m_webView) {
        return;
    }
    WebKitWebView* webView = asWebView(m_webView.get());
    webkit_find_controller_search_finish(webkit_web_view_get_find_controller(webView));
    // Finishing keeps the selected match; the page's selection goes only on request.
    if (clearSelection) {
        webkit_web_view_execute_editing_command(webView, "Unselect");
    }
    m_findText.clear();
    m_findCounter.reset();
}

void VLDBrowserViewImpl::showDevTools()
{
    if (m_webView) {
        webkit_web_inspector_show(webkit_web_view_get_inspector(asWebView(m_webView.get())));
    }
}

void VLDBrowserViewImpl::startDownload(const std::string& url)
{
    if (url.empty() || !m_webView) {
        return;
    }
    // The download then takes the way of every other one, through the session.
    g_object_unref(webkit_web_view_download_uri(asWebView(m_webView.get()), url.c_str()));
}

void VLDBrowserViewImpl::clearCookiesAndCache()
{
    if (!m_webView) {
        return;
    }
    WebKitNetworkSession* session = webkit_web_view_get_network_session(asWebView(m_webView.get()));
    auto types = static_cast<WebKitWebsiteDataTypes>(
        WEBKIT_WEBSITE_DATA_COOKIES | WEBKIT_WEBSITE_DATA_DISK_CACHE | WEBKIT_WEBSITE_DATA_MEMORY_CACHE);
    // A time span of 0 means everything: cookies are only removed then.
    webkit_website_data_manager_clear(
        webkit_network_session_get_website_data_manager(session), types, 0, nullptr, onDataCleared, nullptr);
}

void VLDBrowserViewImpl::fetchIconAtURL(const std::string& url, std::uint64_t maxBytes,
    std::function<void(std::optional<std::vector<std::uint8_t>>)> completion)
{
    GObject* session = m_webView ? G_OBJECT(webkit_web_view_get_network_session(asWebView(m_webView.get()))) : nullptr;
    VLDIconFetch::start(session, url, maxBytes, std::move(completion));
}

void VLDBrowserViewImpl::requestClose()
{
    if (!m_webView || m_teardownQueued) {
        return;
    }
    m_closeRequested = true;
    if (!m_closeTimeout) {
        m_closeTimeout = g_timeout_add(
            static_cast<guint>(closeLimit.count()),
            [](gpointer data) -> gboolean {
                if (auto view = VLDClient::viewForIdentifier(GPOINTER_TO_SIZE(data))) {
                    view->m_closeTimeout = 0;
                    view->engineRequestedClose();
                }
                return G_SOURCE_REMOVE;
            },
            GSIZE_TO_POINTER(m_identifier));
    }
    // The page's unload handlers run; it may refuse, and then no close follows.
    webkit_web_view_try_close(asWebView(m_webView.get()));
}

std::chrono::milliseconds VLDBrowserView::closeTimeLimit()
{
    return closeLimit;
}

void VLDBrowserView::setCloseTimeLimit(std::chrono::milliseconds limit)
{
    closeLimit = limit;
}

void VLDBrowserViewImpl::cancelCloseTimeout()
{
    if (m_closeTimeout) {
        g_source_remove(std::exchange(m_closeTimeout, 0));
    }
}

bool VLDBrowserViewImpl::answerBeforeUnload()
{
    if (!m_closeRequested) {
        return false;
    }
    m_closeRequested = false;
    cancelCloseTimeout();
    return true;
}

void VLDBrowserViewImpl::engineRequestedClose()
{
    cancelCloseTimeout();
    if (!m_webView || m_teardownQueued) {
        return;
    }
    m_teardownQueued = true;
    if (auto delegate = this->delegate()) {
        delegate->shouldTearDownForClose(*this);
    }
    // Not inside the engine's own signal: the engine's view is taken away on the next turn.
    VLDPostToMainThread([identifier = m_identifier]() {
        if (auto view = VLDClient::viewForIdentifier(identifier)) {
            view->tearDown();
        }
    });
}

void VLDBrowserViewImpl::tearDown()
{
    if (!m_webView) {
        return;
    }
    GtkWidget* webView = m_webView.get();
    gtk_widget_unparent(webView);
    // Whatever the page still asked is denied before the owner hears the browser's last word.
    VLDPermissionBridge::answerParkedPermissions(m_identifier);
    if (auto delegate = this->delegate()) {
        delegate->willDestroyBrowser(*this);
    }
    VLDClient::disconnectBrowser(webView);
    m_webView.reset();
    m_closeRequested = false;
    forgetKeyEvents();
}

void VLDBrowserViewImpl::forgetKeyEvents()
{
    for (GdkEvent* event : m_recentKeyEvents) {
        gdk_event_unref(event);
    }
    m_recentKeyEvents.clear();
}

void VLDBrowserViewImpl::reportAddress(const std::string& url)
{
    m_currentURL = url;
    if (auto delegate = this->delegate()) {
        delegate->didChangeAddress(*this, url);
    }
}

void VLDBrowserViewImpl::reportTitle(const std::string& title)
{
    m_pageTitle = title;
    if (auto delegate = this->delegate()) {
        delegate->didChangeTitle(*this, title);
    }
}

void VLDBrowserViewImpl::reportLoadingState(bool isLoading, bool canGoBack, bool canGoForward)
{
    if (m_loadingStateReported && isLoading == m_isLoading && canGoBack == m_canGoBack
        && canGoForward == m_canGoForward) {
        return;
    }
    m_loadingStateReported = true;
    m_isLoading = isLoading;
    m_canGoBack = canGoBack;
    m_canGoForward = canGoForward;
    if (auto delegate = this->delegate()) {
        delegate->didChangeLoadingState(*this, isLoading, canGoBack, canGoForward);
    }
}

void VLDBrowserViewImpl::expectOwnNavigation(const std::string& url)
{
    m_ownNavigation = url;
}

bool VLDBrowserViewImpl::takeOwnNavigation(const std::string& url)
{
    if (m_ownNavigation.empty() || m_ownNavigation != url) {
        return false;
    }
    m_ownNavigation.clear();
    return true;
}

void VLDBrowserViewImpl::rememberNavigation(NavigationRecord record)
{
    m_recentNavigations.push_front(std::move(record));
    if (m_recentNavigations.size() > rememberedNavigations) {
        m_recentNavigations.pop_back();
    }
}

VLDBrowserViewImpl::NavigationRecord VLDBrowserViewImpl::navigationFor(const std::string& url) const
{
    for (const auto& record : m_recentNavigations) {
        if (record.url == url) {
            return record;
        }
    }
    return { url, false, false };
}

gboolean VLDBrowserViewImpl::keyPressed(
    GtkEventControllerKey* controller, unsigned keyval, unsigned keycode, GdkModifierType state, gpointer data)
{
    auto view = VLDClient::viewForIdentifier(GPOINTER_TO_SIZE(data));
    if (!view || !view->m_webView) {
        return FALSE;
    }
    GdkEvent* event = gtk_event_controller_get_current_event(GTK_EVENT_CONTROLLER(controller));
    // A key the page left unhandled comes round again through the window, after any keys typed meanwhile:
    // it was offered already. The references kept on recent events stop their addresses from being reused.
    if (event) {
        auto& recent = view->m_recentKeyEvents;
        if (std::find(recent.begin(), recent.end(), event) != recent.end()) {
            return FALSE;
        }
        recent.push_back(gdk_event_ref(event));
        if (recent.size() > rememberedKeyEvents) {
            gdk_event_unref(recent.front());
            recent.pop_front();
        }
    }
    auto delegate = view->delegate();
    if (!delegate) {
        return FALSE;
    }
    // The code of the key itself, whatever the modifiers make of it: Shift+= is still the = key.
    unsigned baseKeyval = keyval;
    if (event) {
        gdk_display_translate_key(gtk_widget_get_display(view->m_host.get()), keycode, static_cast<GdkModifierType>(0),
            static_cast<int>(gdk_key_event_get_layout(event)), &baseKeyval, nullptr, nullptr, nullptr);
    }
    std::int32_t code = VLDKeyCodes::windowsKeyCodeForKeyval(baseKeyval);
    if (!code) {
        code = VLDKeyCodes::windowsKeyCodeForHardwareKeycode(keycode);
    }
    return delegate->shouldHandleKey(*view, code, VLDKeyCodes::modifiersForState(state)) ? TRUE : FALSE;
}

} // namespace velder
