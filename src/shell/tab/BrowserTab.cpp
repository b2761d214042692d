#include "shell/tab/BrowserTab.h"

#include "bridge/VLDBrowserView.h"
#include "bridge/VLDPermissionRequest.h"
#include "core/ErrorPage.h"
#include "core/FaviconFetcher.h"
#include "core/Format.h"
#include "core/HistoryStore.h"
#include "core/InternalRoute.h"
#include "core/LocationSettings.h"
#include "core/Log.h"
#include "core/Shortcuts.h"
#include "core/UrlHelper.h"
#include "core/Vault.h"
#include "glib/GCharPtr.h"
#include "glib/MainLoop.h"
#include "shell/desktop/Downloads.h"
#include "shell/desktop/PlatformLocation.h"
#include "shell/tab/PrivateSession.h"
#include "shell/tab/TabHost.h"

#include <gtk/gtk.h>

namespace velder {

namespace {

BrowserTab::ViewFactory customFactory;

std::shared_ptr<VLDBrowserView> makeView(
    const std::string& url, std::shared_ptr<VLDRequestContext> context, bool popupHost)
{
    if (customFactory) {
        return customFactory(url, std::move(context), popupHost);
    }
    return popupHost ? VLDBrowserView::popupHostView() : VLDBrowserView::create(url, std::move(context));
}

// Icon fetches ride the page's own network session, cookies included.
class ViewIconSource : public IconSource {
public:
    explicit ViewIconSource(std::weak_ptr<VLDBrowserView> view)
        : m_view(std::move(view))
    {
    }
    void fetchIcon(const std::string& url, std::uint64_t maxBytes,
        std::function<void(std::optional<std::vector<std::uint8_t>>)> completion) override
    {
        if (auto view = m_view.lock()) {
            view->fetchIconAtURL(url, maxBytes, std::move(completion));
        } else {
            MainLoop::post([completion = std::move(completion)] { completion(std::nullopt); });
        }
    }

private:
    std::weak_ptr<VLDBrowserView> m_view;
};

bool locationEnabled()
{
    return Vault::shared().snapshot()->settings.locationEnabled;
}

} // namespace

void BrowserTab::setViewFactory(ViewFactory factory)
{
    customFactory = std::move(factory);
}

std::shared_ptr<BrowserTab> BrowserTab::create(const std::string& url, bool isPrivate)
{
    return make(url, isPrivate, false);
}

std::shared_ptr<BrowserTab> BrowserTab::restore(const std::string& url)
{
    auto tab = make(url, false, false);
    tab->m_firstLoadIsVisit = false;
    return tab;
}

std::shared_ptr<BrowserTab> BrowserTab::createPopupHost(bool isPrivate)
{
    return make("", isPrivate, true);
}

std::shared_ptr<BrowserTab> BrowserTab::make(const std::string& url, bool isPrivate, bool popupHost)
{
    // Every private tab holds exactly one reference to the private session, popup hosts included.
    auto context = isPrivate ? PrivateSession::acquire() : nullptr;
    std::shared_ptr<BrowserTab> tab(new BrowserTab(makeView(url, context, popupHost), url, isPrivate));
    tab->m_view->setDelegate(tab);
    return tab;
}

BrowserTab::BrowserTab(std::shared_ptr<VLDBrowserView> view, std::string initialURL, bool isPrivate)
    : url(std::move(initialURL))
    , m_view(std::move(view))
    , m_isPrivate(isPrivate)
{
}

BrowserTab::~BrowserTab()
{
    if (m_sessionAnswer && !m_isPrivate) {
        mirror(m_sessionAnswer->origin);
    }
    if (m_isPrivate) {
        PrivateSession::release();
    }
}

void BrowserTab::changed()
{
    if (auto host = m_host.lock()) {
        host->tabDidChange(*this);
    }
}

void BrowserTab::locationRequestChanged()
{
    if (auto host = m_host.lock()) {
        host->tabLocationRequestDidChange(*this);
    }
}

// MARK: - What the view reports

void BrowserTab::didChangeFaviconURLs(VLDBrowserView&, const std::vector<std::string>& urls)
{
    if (!m_isPrivate) {
        ViewIconSource source(m_view);
        FaviconFetcher::fetch(source, url, urls);
    }
}

void BrowserTab::didChangeLoadingState(VLDBrowserView&, bool loading, bool back, bool forward)
{
    isLoading = loading;
    canGoBack = back;
    canGoForward = forward;
    changed();
}

void BrowserTab::didRefuseCertificate(VLDBrowserView&, const std::string& certificateURL, std::int32_t code)
{
    log(format("Velder: refused certificate (%d) for %s", code, certificateURL.c_str()));
}

void BrowserTab::didTerminateRenderProcess(VLDBrowserView&, std::int64_t status)
{
    log(format("Velder: render process terminated (status %ld)", static_cast<long>(status)));
    showError(url, "The page crashed (status " + std::to_string(status) + ").");
}

std::shared_ptr<VLDBrowserView> BrowserTab::hostViewForPopup(VLDBrowserView&, const std::string& popupURL, bool)
{
    // The bridge has already refused velder:// popups of ordinary pages.
    auto host = m_host.lock();
    return host ? host->tabWantsPopupHost(*this, popupURL) : nullptr;
}

void BrowserTab::didFindMatchCount(VLDBrowserView&, std::int32_t count, std::int32_t active, bool)
{
    findMatchCount = count;
    findActiveMatch = active;
    if (auto host = m_host.lock()) {
        host->tabDidFindMatches(*this);
    }
}

bool BrowserTab::shouldHandleKey(VLDBrowserView&, std::int32_t code, std::uint32_t modifiers)
{
    return handleEngineKey(code, modifiers);
}

bool BrowserTab::openURLInNewTab(VLDBrowserView&, const std::string& target, bool foreground)
{
    // The bridge has already refused velder:// addresses from ordinary pages.
    auto host = m_host.lock();
    return host && host->tabOpensInNewTab(*this, target, foreground);
}

bool BrowserTab::shouldShowContextMenu(VLDBrowserView&, const VLDContextMenuInfo& info)
{
    auto host = m_host.lock();
    return !host || host->tabWantsContextMenu(*this, info);
}

void BrowserTab::didHoverLink(VLDBrowserView&, const std::string& link)
{
    if (auto host = m_host.lock()) {
        host->tabDidHoverLink(*this, link);
    }
}

bool BrowserTab::shouldHandlePermissionRequest(VLDBrowserView&, std::shared_ptr<VLDPermissionRequest> request)
{
    return handleLocationRequest(std::move(request));
}

void BrowserTab::didWithdrawPermissionRequest(VLDBrowserView&, std::shared_ptr<VLDPermissionRequest> request)
{
    if (pendingLocationRequest == request) {
        pendingLocationRequest.reset();
        locationRequestChanged();
    }
}

bool BrowserTab::decideDestinationForDownload(
    VLDBrowserView& view, const VLDDownloadItem& item, std::shared_ptr<VLDDownloadCallback> callback)
{
    // The question goes over the view's window.
    GtkRoot* root = view.widget() ? gtk_widget_get_root(view.widget()) : nullptr;
    Downloads::decideDestination(item, GTK_IS_WINDOW(root) ? GTK_WINDOW(root) : nullptr, std::move(callback));
    return true;
}

void BrowserTab::didUpdateDownload(VLDBrowserView&, const VLDDownloadItem& item)
{
    Downloads::update(item);
}

void BrowserTab::shouldLeavePage(VLDBrowserView&, std::function<void(bool leave)> answer)
{
    // With no window left to ask in, the close goes on.
    if (auto host = m_host.lock()) {
        host->tabAsksToStay(*this, std::move(answer));
    } else {
        answer(true);
    }
}

void BrowserTab::didKeepPageOnClose(VLDBrowserView&)
{
    if (auto host = m_host.lock()) {
        host->tabKeptPage(*this);
    }
}

void BrowserTab::shouldTearDownForClose(VLDBrowserView&)
{
    if (auto host = m_host.lock()) {
        host->tabWillTearDown(*this);
    }
}

void BrowserTab::willDestroyBrowser(VLDBrowserView&)
{
    // Never from inside the engine's own teardown: the window removes the view once it has unwound.
    MainLoop::post([tab = shared_from_this()] {
        if (auto host = tab->m_host.lock()) {
            host->tabBrowserDidClose(*tab);
        }
    });
}

void BrowserTab::didChangeAddress(VLDBrowserView&, const std::string& newURL)
{
    if (newURL.starts_with("data:")) {
        return; // an error page keeps the failed address
    }
    errorURL.reset();
    bool first = !m_hasReportedAddress;
    m_hasReportedAddress = true;
    if (newURL == url && !first) {
        LocationSettings::shared().pushMirror(newURL, m_isPrivate);
        changed();
        return;
    }
    // The first report of the tab's first load is its first visit, even at the address the tab was made
    // with (a start-up address, a link for a new tab), unless the tab was brought back by session restore.
    // A move within the same document (its fragment) is no new visit.
    auto document = [](const std::string& address) { return address.substr(0, address.find('#')); };
    bool sameDocument = !first && document(newURL) == document(url);
    if (newURL != url && !sameDocument) {
        title.clear();
    }
    url = newURL;
    bool isVisit = first ? m_firstLoadIsVisit : !sameDocument;
    if (isVisit && !m_isPrivate && !InternalRoutes::parse(newURL)) {
        HistoryStore::shared().record(newURL, "", now());
    }
    LocationSettings::shared().pushMirror(newURL, m_isPrivate);
    if (!m_sessionAnswer || m_sessionAnswer->origin != UrlHelper::origin(newURL)) {
        setSessionAnswer(std::nullopt);
    }
    changed();
}

void BrowserTab::didChangeTitle(VLDBrowserView&, const std::string& newTitle)
{
    title = newTitle;
    if (!m_isPrivate) {
        HistoryStore::shared().updateTitle(newTitle, url);
    }
    changed();
}

void BrowserTab::didFailLoad(VLDBrowserView&, std::int32_t code, const std::string& text, const std::string& failedURL)
{
    log(format("Velder: load failed (%d %s) for %s", code, text.c_str(), failedURL.c_str()));
    if (code == -3) {
        return;
    }
    showError(failedURL, ErrorPage::describe(code, text));
}

void BrowserTab::showError(const std::string& failedURL, const std::string& reason)
{
    std::string address = failedURL.empty() ? url : failedURL;
    errorURL = address;
    url = address;
    title = "Cannot open page";
    std::string page = ErrorPage::render(address, reason);
    GCharPtr encoded(g_base64_encode(reinterpret_cast<const guchar*>(page.data()), page.size()));
    m_view->loadURL(std::string("data:text/html;charset=utf-8;base64,") + encoded.get());
    changed();
}

void BrowserTab::reload(bool ignoringCache)
{
    if (errorURL) {
        m_view->loadURL(*errorURL);
    } else if (ignoringCache) {
        m_view->reloadIgnoringCache();
    } else {
        m_view->reload();
    }
}

std::string BrowserTab::displayTitle() const
{
    if (!title.empty()) {
        return title;
    }
    if (std::string host = UrlHelper::host(url); !host.empty()) {
        return host;
    }
    if (UrlHelper::isBlank(url)) {
        return "New Tab";
    }
    return url;
}

void BrowserTab::find(const std::string& text, bool forward, bool findNext)
{
    if (!text.empty()) {
        m_view->findText(text, forward, false, findNext);
        return;
    }
    findMatchCount = 0;
    findActiveMatch = 0;
    m_view->stopFindingAndClearSelection(true);
    if (auto host = m_host.lock()) {
        host->tabDidFindMatches(*this);
    }
}

bool BrowserTab::handleEngineKey(std::int32_t windowsKeyCode, std::uint32_t modifiers)
{
    auto action = Shortcuts::actionForWindowsKeyCode(windowsKeyCode, modifiers);
    auto host = m_host.lock();
    return action && host && host->tabDidPressKey(*this, *action);
}

// MARK: - Location

void BrowserTab::mirror(const std::string& origin)
{
    if (!m_isPrivate) {
        LocationSettings::shared().mirrorEffective(origin);
    }
}

void BrowserTab::setSessionAnswer(std::optional<SessionAnswer> answer)
{
    std::optional<SessionAnswer> old = std::move(m_sessionAnswer);
    m_sessionAnswer = std::move(answer);
    if (old && (!m_sessionAnswer || m_sessionAnswer->origin != old->origin) && !m_isPrivate) {
        mirror(old->origin);
    }
}

std::optional<std::string> BrowserTab::originOfRequest(const std::string& requestOrigin) const
{
    if (auto origin = UrlHelper::origin(requestOrigin)) {
        return origin;
    }
    return UrlHelper::origin(url);
}

LocationAnswer BrowserTab::answerFor(const std::string& origin) const
{
    if (m_sessionAnswer && m_sessionAnswer->origin == origin) {
        return m_sessionAnswer->answer;
    }
    return m_isPrivate ? LocationAnswer::ask : LocationSettings::shared().effective(origin);
}

VLDPermissionRequest::State BrowserTab::locationStateForOrigin(VLDBrowserView&, const std::string& requestOrigin)
{
    // What a request would get, so that a site asks its own question only when Velder would ask too.
    using State = VLDPermissionRequest::State;
    std::optional<std::string> origin = originOfRequest(requestOrigin);
    if (!origin) {
        return State::prompt;
    }
    if (!locationEnabled()) {
        return State::denied;
    }
    switch (answerFor(*origin)) {
    case LocationAnswer::allow:
        return State::granted;
    case LocationAnswer::block:
        return State::denied;
    case LocationAnswer::ask:
        break;
    }
    return State::prompt;
}

bool BrowserTab::handleLocationRequest(std::shared_ptr<VLDPermissionRequest> request)
{
    if (request->kind() != VLDPermissionRequest::Kind::geolocation) {
        return false;
    }
    std::optional<std::string> origin = originOfRequest(request->origin());
    if (!origin) {
        return false;
    }
    if (!locationEnabled()) {
        request->deny();
        mirror(*origin);
        return true;
    }
    switch (answerFor(*origin)) {
    case LocationAnswer::block:
        request->deny();
        return true;
    case LocationAnswer::allow:
        PlatformLocation::ensureAuthorization();
        request->allow();
        changed();
        return true;
    case LocationAnswer::ask:
        break;
    }
    PlatformLocation::ensureAuthorization();
    if (auto older = std::move(pendingLocationRequest)) {
        older->deny();
        if (auto olderOrigin = UrlHelper::origin(older->origin())) {
            mirror(*olderOrigin);
        }
    }
    pendingLocationRequest = std::move(request);
    locationRequestChanged();
    return true;
}

void BrowserTab::resolveLocation(LocationChoice choice)
{
    std::shared_ptr<VLDPermissionRequest> request = std::move(pendingLocationRequest);
    pendingLocationRequest.reset();
    std::optional<std::string> origin = originOfRequest(request ? request->origin() : std::string());
    if (!origin) {
        if (request) {
            request->deny();
        }
        locationRequestChanged();
        return;
    }
    switch (choice) {
    case LocationChoice::allowOnce:
    case LocationChoice::alwaysAllow:
        PlatformLocation::ensureAuthorization();
        if (request) {
            request->allow();
        }
        setSessionAnswer(SessionAnswer { *origin, LocationAnswer::allow });
        if (choice == LocationChoice::alwaysAllow) {
            LocationSettings::shared().store(LocationAnswer::allow, *origin, m_isPrivate);
        }
        break;
    case LocationChoice::never:
        if (request) {
            request->deny();
        }
        setSessionAnswer(SessionAnswer { *origin, LocationAnswer::block });
        LocationSettings::shared().store(LocationAnswer::block, *origin, m_isPrivate);
        break;
    }
    locationRequestChanged();
    changed();
}

void BrowserTab::refuseParkedLocationRequest()
{
    std::shared_ptr<VLDPermissionRequest> request = std::move(pendingLocationRequest);
    pendingLocationRequest.reset();
    if (!request) {
        return;
    }
    request->deny();
    if (auto origin = UrlHelper::origin(request->origin())) {
        mirror(*origin);
    }
    locationRequestChanged();
}

bool BrowserTab::isLocationLit() const
{
    if (!locationEnabled()) {
        return false;
    }
    auto origin = UrlHelper::origin(url);
    if (!origin) {
        return false;
    }
    if (m_sessionAnswer && m_sessionAnswer->origin == *origin) {
        return m_sessionAnswer->answer == LocationAnswer::allow;
    }
    if (m_isPrivate) {
        return false;
    }
    return LocationSettings::shared().effective(*origin) == LocationAnswer::allow;
}

} // namespace velder
