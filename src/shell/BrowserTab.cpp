#include "shell/BrowserTab.h"

#include "bridge/VLDBrowserView.h"
#include "bridge/VLDMainThread.h"
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
#include "shell/BrowserDelegate.h"
#include "shell/Downloads.h"
#include "shell/InternalAddressGuard.h"
#include "shell/PlatformLocation.h"
#include "shell/PrivateSession.h"

#include <glib.h>

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
            VLDPostToMainThread([completion = std::move(completion)] { completion(std::nullopt); });
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
    auto context = isPrivate ? PrivateSession::acquire() : nullptr;
    std::shared_ptr<BrowserTab> tab(new BrowserTab(makeView(url, context, false), url, isPrivate));
    tab->wire();
    return tab;
}

std::shared_ptr<BrowserTab> BrowserTab::createPopupHost(bool isPrivate)
{
    // Every private tab holds exactly one reference to the private session, popup hosts included.
    auto context = isPrivate ? PrivateSession::acquire() : nullptr;
    std::shared_ptr<BrowserTab> tab(new BrowserTab(makeView("", context, true), "", isPrivate));
    tab->wire();
    return tab;
}

BrowserTab::BrowserTab(std::shared_ptr<VLDBrowserView> view, std::string initialURL, bool isPrivate)
    : url(std::move(initialURL))
    , m_view(std::move(view))
    , m_isPrivate(isPrivate)
    , m_handlers(std::make_shared<BrowserDelegate>())
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

void BrowserTab::wire()
{
    m_view->setDelegate(m_handlers);
    std::weak_ptr<BrowserTab> weak = weak_from_this();
    BrowserDelegate& handlers = *m_handlers;

    handlers.onAddressChanged = [weak](const std::string& newURL) {
        if (auto tab = weak.lock()) {
            tab->addressChanged(newURL);
        }
    };
    handlers.onTitleChanged = [weak](const std::string& newTitle) {
        if (auto tab = weak.lock()) {
            tab->titleChanged(newTitle);
        }
    };
    handlers.onFaviconsChanged = [weak](const std::vector<std::string>& urls) {
        auto tab = weak.lock();
        if (!tab || tab->m_isPrivate) {
            return;
        }
        ViewIconSource source(tab->m_view);
        FaviconFetcher::fetch(source, tab->url, urls);
    };
    handlers.onLoadingStateChanged = [weak](bool loading, bool back, bool forward) {
        if (auto tab = weak.lock()) {
            tab->isLoading = loading;
            tab->canGoBack = back;
            tab->canGoForward = forward;
            if (tab->onStateChanged) {
                tab->onStateChanged(*tab);
            }
        }
    };
    handlers.onLoadFailed = [weak](std::int32_t code, const std::string& text, const std::string& failedURL) {
        if (auto tab = weak.lock()) {
            tab->loadFailed(code, text, failedURL);
        }
    };
    handlers.onCertificateRefused = [](const std::string& certificateURL, std::int32_t code) {
        log(format("Velder: refused certificate (%d) for %s", code, certificateURL.c_str()));
    };
    handlers.onRenderProcessTerminated = [weak](std::int64_t status) {
        log(format("Velder: render process terminated (status %ld)", static_cast<long>(status)));
        if (auto tab = weak.lock()) {
            tab->showError(tab->url, "The page crashed (status " + std::to_string(status) + ").");
        }
    };
    handlers.makePopupHost = [weak](const std::string& popupURL, bool) -> std::shared_ptr<VLDBrowserView> {
        auto tab = weak.lock();
        if (!tab || !tab->makePopupHost || !InternalAddressGuard::allows(popupURL, tab->url)) {
            return nullptr;
        }
        return tab->makePopupHost(popupURL);
    };
    handlers.onFindResult = [weak](std::int32_t count, std::int32_t active, bool) {
        if (auto tab = weak.lock()) {
            tab->findMatchCount = count;
            tab->findActiveMatch = active;
            if (tab->onFindResult) {
                tab->onFindResult(*tab);
            }
        }
    };
    handlers.handleKey = [weak](std::int32_t code, std::uint32_t modifiers) {
        auto tab = weak.lock();
        return tab ? tab->handleEngineKey(code, modifiers) : false;
    };
    handlers.onOpenURLInNewTab = [weak](const std::string& target, bool foreground) {
        auto tab = weak.lock();
        if (!tab) {
            return false;
        }
        if (!InternalAddressGuard::allows(target, tab->url)) {
            return true; // handled: nothing opens
        }
        return tab->openURLInNewTab ? tab->openURLInNewTab(target, foreground) : false;
    };
    handlers.onShowContextMenu = [weak](const VLDContextMenuInfo& info) {
        auto tab = weak.lock();
        if (!tab || !tab->showContextMenu) {
            return true;
        }
        return tab->showContextMenu(info);
    };
    handlers.handlePermissionRequest = [weak](std::shared_ptr<VLDPermissionRequest> request) {
        auto tab = weak.lock();
        return tab ? tab->handleLocationRequest(std::move(request)) : false;
    };
    handlers.onPermissionRequestWithdrawn = [weak](std::shared_ptr<VLDPermissionRequest> request) {
        auto tab = weak.lock();
        if (tab && tab->pendingLocationRequest == request) {
            tab->pendingLocationRequest.reset();
            if (tab->onLocationRequestChanged) {
                tab->onLocationRequestChanged(*tab);
            }
        }
    };
    handlers.onDownloadUpdated = [](const VLDDownloadItem& item) { Downloads::update(item); };
    handlers.onEngineRequestedTearDown = [weak] {
        if (auto tab = weak.lock(); tab && tab->onEngineRequestedTearDown) {
            tab->onEngineRequestedTearDown(*tab);
        }
    };
    handlers.onBrowserDestroyed = [weak] {
        // Never from inside the engine's own teardown: the window removes the view once it has unwound.
        if (auto tab = weak.lock()) {
            VLDPostToMainThread([tab] {
                if (tab->onBrowserDestroyed) {
                    tab->onBrowserDestroyed(*tab);
                }
            });
        }
    };
}

void BrowserTab::addressChanged(const std::string& newURL)
{
    if (newURL.starts_with("data:")) {
        return; // an error page keeps the failed address
    }
    errorURL.reset();
    if (newURL == url) {
        LocationSettings::shared().pushMirror(newURL, m_isPrivate);
    } else {
        title.clear();
        url = newURL;
        if (!m_isPrivate && !InternalRoutes::parse(newURL)) {
            HistoryStore::shared().record(newURL, "", now());
        }
        LocationSettings::shared().pushMirror(newURL, m_isPrivate);
        if (!m_sessionAnswer || m_sessionAnswer->origin != UrlHelper::origin(newURL)) {
            setSessionAnswer(std::nullopt);
        }
    }
    if (onStateChanged) {
        onStateChanged(*this);
    }
}

void BrowserTab::titleChanged(const std::string& newTitle)
{
    title = newTitle;
    if (!m_isPrivate) {
        HistoryStore::shared().updateTitle(newTitle, url);
    }
    if (onStateChanged) {
        onStateChanged(*this);
    }
}

void BrowserTab::loadFailed(std::int32_t code, const std::string& text, const std::string& failedURL)
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
    if (onStateChanged) {
        onStateChanged(*this);
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
    if (onFindResult) {
        onFindResult(*this);
    }
}

bool BrowserTab::handleEngineKey(std::int32_t windowsKeyCode, std::uint32_t modifiers)
{
    auto action = Shortcuts::actionForWindowsKeyCode(windowsKeyCode, modifiers);
    if (!action || !handleKey) {
        return false;
    }
    return handleKey(*action);
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

bool BrowserTab::handleLocationRequest(std::shared_ptr<VLDPermissionRequest> request)
{
    if (request->kind() != VLDPermissionRequest::Kind::geolocation) {
        return false;
    }
    std::optional<std::string> origin = UrlHelper::origin(request->origin());
    if (!origin) {
        origin = UrlHelper::origin(url);
    }
    if (!origin) {
        return false;
    }
    if (!locationEnabled()) {
        request->deny();
        mirror(*origin);
        return true;
    }
    LocationAnswer answer;
    if (m_sessionAnswer && m_sessionAnswer->origin == *origin) {
        answer = m_sessionAnswer->answer;
    } else if (m_isPrivate) {
        answer = LocationAnswer::ask;
    } else {
        answer = LocationSettings::shared().effective(*origin);
    }
    switch (answer) {
    case LocationAnswer::block:
        request->deny();
        return true;
    case LocationAnswer::allow:
        PlatformLocation::ensureAuthorization();
        request->allow();
        if (onStateChanged) {
            onStateChanged(*this);
        }
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
    if (onLocationRequestChanged) {
        onLocationRequestChanged(*this);
    }
    return true;
}

void BrowserTab::resolveLocation(LocationChoice choice)
{
    std::shared_ptr<VLDPermissionRequest> request = std::move(pendingLocationRequest);
    pendingLocationRequest.reset();
    std::optional<std::string> origin = request ? UrlHelper::origin(request->origin()) : std::nullopt;
    if (!origin) {
        origin = UrlHelper::origin(url);
    }
    if (!origin) {
        if (request) {
            request->deny();
        }
        if (onLocationRequestChanged) {
            onLocationRequestChanged(*this);
        }
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
    if (onLocationRequestChanged) {
        onLocationRequestChanged(*this);
    }
    if (onStateChanged) {
        onStateChanged(*this);
    }
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
    if (onLocationRequestChanged) {
        onLocationRequestChanged(*this);
    }
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
