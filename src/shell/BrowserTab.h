#pragma once

#include "core/BrowserAction.h"
#include "core/LocationAnswer.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velder {

class BrowserDelegate;
class VLDBrowserView;
class VLDPermissionRequest;
class VLDRequestContext;
struct VLDContextMenuInfo;

// The window-independent state of one page: it owns one browser view, keeps the tab's address, title and
// navigation flags, and turns what the engine reports into history, error pages, icon fetches, location
// answers and calls to its window. A tab knows nothing of windows: the window sets the callbacks when it
// installs the tab, and they hold the window weakly.
//
// Main thread only.
class BrowserTab : public std::enable_shared_from_this<BrowserTab> {
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
    // A tab around a popup host: the engine creates the popup's browser into its view; url stays empty.
    static std::shared_ptr<BrowserTab> createPopupHost(bool isPrivate);
    ~BrowserTab();

    const std::shared_ptr<VLDBrowserView>& view() const { return m_view; }
    bool isPrivate() const { return m_isPrivate; }

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

    // Set by the window.
    std::function<void(BrowserTab&)> onStateChanged;
    std::function<void(BrowserTab&)> onFindResult;
    std::function<std::shared_ptr<VLDBrowserView>(const std::string& url)> makePopupHost;
    std::function<void(BrowserTab&)> onBrowserDestroyed;
    std::function<void(BrowserTab&)> onEngineRequestedTearDown;
    std::function<bool(BrowserAction)> handleKey;
    std::function<bool(const VLDContextMenuInfo&)> showContextMenu;
    std::function<bool(const std::string& url, bool foreground)> openURLInNewTab;
    std::function<void(BrowserTab&)> onLocationRequestChanged;

    // The title, else the host, else "New Tab" for a blank page, else the address.
    std::string displayTitle() const;
    void find(const std::string& text, bool forward, bool findNext);
    // Shows the error page as a data: document while the tab keeps the failed address.
    void showError(const std::string& failedURL, const std::string& reason);

    bool handleLocationRequest(std::shared_ptr<VLDPermissionRequest> request);
    void resolveLocation(LocationChoice choice);
    void refuseParkedLocationRequest();
    bool isLocationLit() const;

    // The engine's key hook: the key table's action for a Windows key code, run through handleKey.
    bool handleEngineKey(std::int32_t windowsKeyCode, std::uint32_t modifiers);

private:
    BrowserTab(std::shared_ptr<VLDBrowserView> view, std::string url, bool isPrivate);
    void wire();
    void addressChanged(const std::string& newURL);
    void titleChanged(const std::string& newTitle);
    void loadFailed(std::int32_t code, const std::string& text, const std::string& failedURL);
    void mirror(const std::string& origin);

    std::shared_ptr<VLDBrowserView> m_view;
    bool m_isPrivate;
    std::shared_ptr<BrowserDelegate> m_handlers;
    std::optional<SessionAnswer> m_sessionAnswer;
};

} // namespace velder
