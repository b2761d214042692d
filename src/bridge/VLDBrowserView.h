#pragma once

#include "bridge/VLDBrowserDelegate.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

typedef struct _GtkWidget GtkWidget;

namespace velder {

class VLDRequestContext;

// The one object through which the window layer touches a page: a GTK widget that hosts one engine
// browser. The browser is created when the widget is first placed in a window (a popup host never creates
// one: the engine attaches the popup's browser to it). Commands on a view without a browser do nothing,
// except loadURL and setZoomLevel, which are remembered and applied when the browser comes.
//
// Main thread only. The view holds its delegate weakly; the bridge's tables hold views weakly.
class VLDBrowserView : public std::enable_shared_from_this<VLDBrowserView> {
public:
    // A view that loads `url` once it is in a window, in the given session (the persistent one if null).
    static std::shared_ptr<VLDBrowserView> create(
        const std::string& url, std::shared_ptr<VLDRequestContext> context = nullptr);
    // A view for a popup: the engine creates the popup's browser into it.
    static std::shared_ptr<VLDBrowserView> popupHostView();
    // The live view with this identifier, or null.
    static std::shared_ptr<VLDBrowserView> viewForIdentifier(std::uint64_t identifier);
    // Starts a web process of the persistent session now, before any window: the first page created in that
    // session runs in it, so the process starts while the window is being built.
    static void startWebProcessEarly();
    // Lets the early process go if no page took it (the first window was private).
    static void releaseUnclaimedWebProcess();

    virtual ~VLDBrowserView() = default;

    // The host widget to place in the window. The view keeps a reference to it.
    virtual GtkWidget* widget() const = 0;
    // A counter of the bridge's, unique in the process.
    virtual std::uint64_t identifier() const = 0;

    virtual void setDelegate(std::weak_ptr<VLDBrowserDelegate> delegate) = 0;

    virtual const std::string& currentURL() const = 0;
    virtual const std::string& pageTitle() const = 0;
    virtual bool isLoading() const = 0;
    virtual bool canGoBack() const = 0;
    virtual bool canGoForward() const = 0;
    virtual bool hasBrowser() const = 0;
    virtual bool isPopupHost() const = 0;
    virtual bool refusesNavigationFocus() const = 0;
    virtual void setRefusesNavigationFocus(bool refuses) = 0;
    virtual double zoomLevel() const = 0;
    // Zoom levels are powers of 1.2: level 1 is 120 %.
    virtual void setZoomLevel(double level) = 0;

    // An empty URL is ignored.
    virtual void loadURL(const std::string& url) = 0;
    virtual void goBack() = 0;
    virtual void goForward() = 0;
    virtual void reload() = 0;
    virtual void reloadIgnoringCache() = 0;
    virtual void stopLoading() = 0;
    virtual void setBrowserFocus(bool focus) = 0;
    // Results come through didFindMatchCount, with the count and the ordinal of the active match.
    virtual void findText(const std::string& text, bool forward, bool matchCase, bool findNext) = 0;
    virtual void stopFindingAndClearSelection(bool clearSelection) = 0;
    virtual void showDevTools() = 0;
    // The download goes through the delegate's download operations like any other.
    virtual void startDownload(const std::string& url) = 0;
    virtual void clearCookiesAndCache() = 0;
    // A GET in this page's network session, cookies included. The completion runs exactly once on the main
    // thread: the body of a 200 response of at most maxBytes, or nothing.
    virtual void fetchIconAtURL(const std::string& url, std::uint64_t maxBytes,
        std::function<void(std::optional<std::vector<std::uint8_t>>)> completion)
        = 0;
    // Asks the page to close: its unload handlers run, and a page that refuses keeps its view (the delegate
    // hears didKeepPageOnClose). Otherwise the delegate hears shouldTearDownForClose, then willDestroyBrowser;
    // a page that doesn't answer within the close time limit is closed all the same.
    virtual void requestClose() = 0;

    // How long a page may take to answer a close: 5 seconds, or what a test sets.
    static std::chrono::milliseconds closeTimeLimit();
    static void setCloseTimeLimit(std::chrono::milliseconds limit);
};

} // namespace velder
