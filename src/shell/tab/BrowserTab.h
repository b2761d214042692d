#pragma once

#include "bridge/VLDBrowserDelegate.h"
#include "core/LocationAnswer.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velder {

class TabHost;
class VLDBrowserView;
class VLDPermissionRequest;
class VLDRequestContext;

// The window-independent state of one page: it owns one browser view, is that view's delegate, keeps the
// tab's address, title and navigation flags, and turns what the engine reports into history, error pages,
// icon fetches, location answers and questions to its host. A tab knows no window: the window that shows it
// is its host, held weakly.
//
// Main thread only.
class BrowserTab final : public VLDBrowserDelegate, public std::enable_shared_from_this<BrowserTab> {
public:
    struct SessionAnswer {
        std::string origin;
        LocationAnswer answer;
        bool operator==(const SessionAnswer&) const = default;
    };

    // Makes the engine view of a tab: the real one (with no factory set), or a fake in the window layer's tests.
    using ViewFactory = std::function<std::shared_ptr<VLDBrowserView>(
        const std::string& url, std::shared_ptr<VLDRequestContext> context, bool popupHost)>;
    static void setViewFactory(ViewFactory factory);

    // A tab that loads `url`. A private tab joins the shared in-memory session.
    static std::shared_ptr<BrowserTab> create(const std::string& url, bool isPrivate);
    // A tab brought back by session restore: its first load is no new visit.
    static std::shared_ptr<BrowserTab> restore(const std::string& url);
    // A tab around a popup host: the engine creates the popup's browser into its view; url stays empty.
    static std::shared_ptr<BrowserTab> createPopupHost(bool isPrivate);
    ~BrowserTab() override;

    const std::shared_ptr<VLDBrowserView>& view() const { return m_view; }
    bool isPrivate() const { return m_isPrivate; }
    void setHost(std::weak_ptr<TabHost> host) { m_host = std::move(host); }

    std::string url;
    std::string title;
    bool isLoading = false;
    bool canGoBack = false;
    bool canGoForward = false;
    int findMatchCount = 0;
    int findActiveMatch = 0;
    std::shared_ptr<VLDPermissionRequest> pendingLocationRequest;
    std::optional<std::string> errorURL; // the address an error page is showing for

    const std::optional<SessionAnswer>& sessionAnswer() const { return m_sessionAnswer; }
    // Writing the answer lets the engine forget what a one-time answer gave the old origin.
    void setSessionAnswer(std::optional<SessionAnswer> answer);

    // The title, else the host, else "New Tab" for a blank page, else the address.
    std::string displayTitle() const;
    void find(const std::string& text, bool forward, bool findNext);
    // Shows the error page as a data: document while the tab keeps the failed address.
    void showError(const std::string& failedURL, const std::string& reason);
    // Loads the page again; on an error page, the failed address is tried again (not the error page).
    void reload(bool ignoringCache);

    bool handleLocationRequest(std::shared_ptr<VLDPermissionRequest> request);
    void resolveLocation(LocationChoice choice);
    void refuseParkedLocationRequest();
    bool isLocationLit() const;

    // The engine's key hook: the key table's action for a Windows key code (KeyModifier flags), for the host.
    bool handleEngineKey(std::int32_t windowsKeyCode, std::uint32_t modifiers);

    // What the view reports.
    void didChangeAddress(VLDBrowserView&, const std::string& url) override;
    void didChangeTitle(VLDBrowserView&, const std::string& title) override;
    void didChangeFaviconURLs(VLDBrowserView&, const std::vector<std::string>& urls) override;
    void didChangeLoadingState(VLDBrowserView&, bool isLoading, bool canGoBack, bool canGoForward) override;
    void didFailLoad(VLDBrowserView&, std::int32_t code, const std::string& text, const std::string& url) override;
    std::shared_ptr<VLDBrowserView> hostViewForPopup(VLDBrowserView&, const std::string& url, bool gesture) override;
    void shouldLeavePage(VLDBrowserView&, std::function<void(bool leave)> answer) override;
    void didKeepPageOnClose(VLDBrowserView&) override;
    void shouldTearDownForClose(VLDBrowserView&) override;
    void willDestroyBrowser(VLDBrowserView&) override;
    void didRefuseCertificate(VLDBrowserView&, const std::string& url, std::int32_t code) override;
    void didTerminateRenderProcess(VLDBrowserView&, std::int64_t status) override;
    bool openURLInNewTab(VLDBrowserView&, const std::string& url, bool foreground) override;
    bool shouldHandlePermissionRequest(VLDBrowserView&, std::shared_ptr<VLDPermissionRequest> request) override;
    void didWithdrawPermissionRequest(VLDBrowserView&, std::shared_ptr<VLDPermissionRequest> request) override;
    VLDPermissionRequest::State locationStateForOrigin(VLDBrowserView&, const std::string& origin) override;
    bool decideDestinationForDownload(
        VLDBrowserView&, const VLDDownloadItem&, std::shared_ptr<VLDDownloadCallback>) override;
    void didUpdateDownload(VLDBrowserView&, const VLDDownloadItem& item) override;
    void didFindMatchCount(VLDBrowserView&, std::int32_t count, std::int32_t activeMatch, bool isFinal) override;
    bool shouldHandleKey(VLDBrowserView&, std::int32_t windowsKeyCode, std::uint32_t modifiers) override;
    bool shouldShowContextMenu(VLDBrowserView&, const VLDContextMenuInfo& info) override;
    void didHoverLink(VLDBrowserView&, const std::string& url) override;

private:
    BrowserTab(std::shared_ptr<VLDBrowserView> view, std::string url, bool isPrivate);
    static std::shared_ptr<BrowserTab> make(const std::string& url, bool isPrivate, bool popupHost);
    void changed();
    void locationRequestChanged();
    void mirror(const std::string& origin);
    // A request's origin as the answers key it; the page's own when the request names none that normalises.
    std::optional<std::string> originOfRequest(const std::string& requestOrigin) const;
    // The answer a request from `origin` gets with the switch on: this tab's own answer for it first.
    LocationAnswer answerFor(const std::string& origin) const;

    std::shared_ptr<VLDBrowserView> m_view;
    bool m_isPrivate;
    std::weak_ptr<TabHost> m_host;
    std::optional<SessionAnswer> m_sessionAnswer;
    bool m_hasReportedAddress = false;
    bool m_firstLoadIsVisit = true;
};

} // namespace velder
