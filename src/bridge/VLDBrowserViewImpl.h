#pragma once

#include "bridge/VLDBrowserView.h"
#include "bridge/VLDFindCounter.h"
#include "glib/GObjectPtr.h"

#include <deque>
#include <gtk/gtk.h>

namespace velder {

class VLDRequestContextImpl;

// The browser view on WebKitGTK: a host widget whose one child is the engine's view. The engine's view is
// created when the host is first placed in a window (or, for a popup host, handed over by the engine),
// and goes when the engine has agreed to close the page.
class VLDBrowserViewImpl final : public VLDBrowserView {
public:
    VLDBrowserViewImpl(std::string url, std::shared_ptr<VLDRequestContextImpl> context, bool createsOwnBrowser);
    ~VLDBrowserViewImpl() override;

    GtkWidget* widget() const override { return m_host.get(); }
    std::uint64_t identifier() const override { return m_identifier; }
    void setDelegate(std::weak_ptr<VLDBrowserDelegate> delegate) override { m_delegate = std::move(delegate); }
    const std::string& currentURL() const override { return m_currentURL; }
    const std::string& pageTitle() const override { return m_pageTitle; }
    bool isLoading() const override { return m_isLoading; }
    bool canGoBack() const override { return m_canGoBack; }
    bool canGoForward() const override { return m_canGoForward; }
    bool hasBrowser() const override { return static_cast<bool>(m_webView); }
    bool isPopupHost() const override { return !m_createsOwnBrowser; }
    bool refusesNavigationFocus() const override { return m_refusesNavigationFocus; }
    void setRefusesNavigationFocus(bool refuses) override { m_refusesNavigationFocus = refuses; }
    double zoomLevel() const override { return m_zoomLevel; }
    void setZoomLevel(double level) override;

    void loadURL(const std::string& url) override;
    void goBack() override;
    void goForward() override;
    void reload() override;
    void reloadIgnoringCache() override;
    void stopLoading() override;
    void setBrowserFocus(bool focus) override;
    void findText(const std::string& text, bool forward, bool matchCase, bool findNext) override;
    void stopFindingAndClearSelection(bool clearSelection) override;
    void showDevTools() override;
    void startDownload(const std::string& url) override;
    void clearCookiesAndCache() override;
    void fetchIconAtURL(const std::string& url, std::uint64_t maxBytes,
        std::function<void(std::optional<std::vector<std::uint8_t>>)> completion) override;
    void requestClose() override;

    // What the bridge needs of a view.
    std::shared_ptr<VLDBrowserDelegate> delegate() const { return m_delegate.lock(); }
    // The engine's view, null without a browser.
    GtkWidget* webView() const { return m_webView.get(); }
    // The session of this view's browser (the persistent one unless a private context was given).
    const std::shared_ptr<VLDRequestContextImpl>& requestContext() const { return m_context; }

    // The host was placed in a window: an own-browser view creates its browser the first time.
    void hostWasRooted();
    // The engine made a popup into this host: `webView` (a new engine view, related to the opener's) becomes
    // its browser, in the opener's session and process.
    void attachPopupBrowser(GtkWidget* webView, const std::shared_ptr<VLDBrowserViewImpl>& opener);

    // The view in whose web process this one's page was created (itself when it was created alone).
    std::uint64_t processGroup() const { return m_processGroup; }
    bool isClosing() const { return m_closeRequested; }
    // A main-frame commit's page identifier. WebKit gives a page a new one when it moves it to another web
    // process, as it does on a navigation to another site: the view no longer shares its group's process.
    void notePageIdentifier(std::uint64_t pageIdentifier);

    // Reports from the engine: each updates the view, then tells the delegate.
    void reportAddress(const std::string& url);
    void reportTitle(const std::string& title);
    void reportLoadingState(bool isLoading, bool canGoBack, bool canGoForward);
    // A search or a step found `matchCount` matches (a step reports 1 when it found any).
    void reportFindResult(unsigned matchCount);

    // The engine agreed to close the page (its unload handlers ran), or a hung page ran out of time.
    void engineRequestedClose();
    // A page asks whether it may be left. In a close that Velder started, its wish to stay is granted and
    // true returned; otherwise false (the engine asks the user).
    bool answerBeforeUnload();

    // Main-frame navigations to velder:// this view's own commands started (the shell's, or an internal
    // page's redirect); each is let through once.
    void expectOwnNavigation(const std::string& url);
    bool takeOwnNavigation(const std::string& url);
    // The address of the document last committed in the main frame.
    const std::string& committedURL() const { return m_committedURL; }
    void setCommittedURL(const std::string& url) { m_committedURL = url; }

    // What a navigation decision said about a request, kept until the main frame's response is decided.
    struct NavigationRecord {
        std::string url;
        bool isUserGesture = false;
        bool isRedirect = false;
    };
    void rememberNavigation(NavigationRecord record);
    NavigationRecord navigationFor(const std::string& url) const;

    // Main-frame load bookkeeping for error numbers.
    unsigned redirectCount = 0;
    // The page's selected text, as its selection script last posted it.
    std::string selectionText;
    std::string hoveredLink; // the link under the pointer, as last reported

private:
    void createBrowser();
    void attachBrowser(GtkWidget* webView);
    void tearDown();
    void navigate(const std::string& expectedURL, const std::function<void()>& command);
    void cancelCloseTimeout();
    void forgetKeyEvents();
    static gboolean keyPressed(GtkEventControllerKey*, unsigned keyval, unsigned keycode, GdkModifierType, gpointer);

    std::uint64_t m_identifier;
    std::uint64_t m_processGroup;
    std::uint64_t m_pageIdentifier = 0;
    GObjectPtr<GtkWidget> m_host;
    GObjectPtr<GtkWidget> m_webView;
    std::shared_ptr<VLDRequestContextImpl> m_context;
    std::weak_ptr<VLDBrowserDelegate> m_delegate;
    std::string m_pendingURL;
    bool m_createsOwnBrowser;
    bool m_created = false;
    double m_zoomLevel = 0.0;
    bool m_isLoading = false;
    bool m_canGoBack = false;
    bool m_canGoForward = false;
    bool m_loadingStateReported = false;
    bool m_refusesNavigationFocus = false;
    std::string m_currentURL;
    std::string m_pageTitle;
    std::string m_committedURL;

    std::string m_ownNavigation;
    std::deque<NavigationRecord> m_recentNavigations;

    std::string m_findText;
    bool m_findMatchCase = false;
    bool m_findForward = true;
    bool m_findIsNewSearch = false;
    bool m_findLostItsPlace = false; // the page was pressed since the last find
    VLDFindCounter m_findCounter;

    bool m_closeRequested = false;
    bool m_teardownQueued = false;
    guint m_closeTimeout = 0;

    std::deque<GdkEvent*> m_recentKeyEvents;
};

} // namespace velder
