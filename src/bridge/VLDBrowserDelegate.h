#pragma once

#include "bridge/VLDContextMenuInfo.h"
#include "bridge/VLDDownloadItem.h"
#include "bridge/VLDPermissionRequest.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace velder {

class VLDBrowserView;
class VLDDownloadCallback;

// How a page's web process ended.
namespace VLDRenderProcessStatus {
inline constexpr std::int64_t wasKilled = 1; // by Velder itself
inline constexpr std::int64_t crashed = 2;
inline constexpr std::int64_t outOfMemory = 3;
} // namespace VLDRenderProcessStatus

// What a browser view reports to its owner. Every operation is optional: the defaults below are what the
// bridge does for an owner that leaves one out (nothing; popup refused; navigation allowed; the engine's
// own handling; permission denied; download to the default path; key not handled; the engine's menu).
//
// All calls come on the main thread. The first argument is the view concerned; an owner may call any
// command of a view from inside a call.
class VLDBrowserDelegate {
public:
    virtual ~VLDBrowserDelegate() = default;

    // Display
    virtual void didChangeAddress(VLDBrowserView&, const std::string& /*url*/) { }
    virtual void didChangeTitle(VLDBrowserView&, const std::string& /*title*/) { }
    // The page's icon candidates in the page's order (the origin's /favicon.ico when it declares none).
    virtual void didChangeFaviconURLs(VLDBrowserView&, const std::vector<std::string>& /*urls*/) { }

    // Load
    virtual void didChangeLoadingState(VLDBrowserView&, bool /*isLoading*/, bool /*canGoBack*/, bool /*canGoForward*/)
    {
    }
    // Main-frame failures only, as network error numbers (-105 name not resolved, -102 refused, ...); an
    // aborted load (-3) is never reported.
    virtual void didFailLoad(
        VLDBrowserView&, std::int32_t /*errorCode*/, const std::string& /*errorText*/, const std::string& /*failedURL*/)
    {
    }

    // Life span
    virtual void didCreateBrowser(VLDBrowserView&) { }
    // A page opens a window: return a popup host (VLDBrowserView::popupHostView) already placed in a window,
    // or null to refuse the popup.
    virtual std::shared_ptr<VLDBrowserView> hostViewForPopup(
        VLDBrowserView&, const std::string& /*url*/, bool /*isUserGesture*/)
    {
        return nullptr;
    }
    virtual void didCreatePopup(VLDBrowserView& /*opener*/, VLDBrowserView& /*popup*/) { }
    // The page agreed to close (its unload handlers ran): the host view will be torn down next.
    virtual void shouldTearDownForClose(VLDBrowserView&) { }
    // The page asks to stay while it is being closed: the owner asks the user and calls `answer` once, true
    // to leave (the close goes on) or false to stay. Unanswered, the page stays.
    virtual void shouldLeavePage(VLDBrowserView&, std::function<void(bool leave)> answer) { answer(false); }
    // The page stays after it was asked to close: it keeps its browser.
    virtual void didKeepPageOnClose(VLDBrowserView&) { }
    // The last word on a browser: after it, hasBrowser() is false and commands do nothing.
    virtual void willDestroyBrowser(VLDBrowserView&) { }

    // Requests
    // Main-frame navigations only; false cancels.
    virtual bool shouldAllowNavigation(
        VLDBrowserView&, const std::string& /*url*/, bool /*isUserGesture*/, bool /*isRedirect*/)
    {
        return true;
    }
    // A middle click or Ctrl+click (background), Ctrl+Shift+click (foreground), or a new-window link without
    // a popup. True means the owner handled it.
    virtual bool openURLInNewTab(VLDBrowserView&, const std::string& /*url*/, bool /*foreground*/) { return false; }
    virtual void didRefuseCertificate(VLDBrowserView&, const std::string& /*url*/, std::int32_t /*errorCode*/) { }
    virtual void didTerminateRenderProcess(VLDBrowserView&, std::int64_t /*status*/) { }

    // Permissions: true means the owner will answer the request, now or later.
    virtual bool shouldHandlePermissionRequest(VLDBrowserView&, std::shared_ptr<VLDPermissionRequest>) { return false; }
    virtual void didWithdrawPermissionRequest(VLDBrowserView&, std::shared_ptr<VLDPermissionRequest>) { }
    // The page asks what a location request from `origin` would get, when the session's stored answer
    // doesn't tell.
    virtual VLDPermissionRequest::State locationStateForOrigin(VLDBrowserView&, const std::string& /*origin*/)
    {
        return VLDPermissionRequest::State::prompt;
    }

    // Downloads: true means the owner will answer the callback, now or later.
    virtual bool decideDestinationForDownload(
        VLDBrowserView&, const VLDDownloadItem&, std::shared_ptr<VLDDownloadCallback>)
    {
        return false;
    }
    virtual void didUpdateDownload(VLDBrowserView&, const VLDDownloadItem&) { }

    // Find
    virtual void didFindMatchCount(
        VLDBrowserView&, std::int32_t /*count*/, std::int32_t /*activeMatch*/, bool /*isFinal*/)
    {
    }

    // Keys, before the page sees them, with KeyModifier flags: true means the owner took the key.
    virtual bool shouldHandleKey(VLDBrowserView&, std::int32_t /*windowsKeyCode*/, std::uint32_t /*modifiers*/)
    {
        return false;
    }

    // The pointer is over a link to `url`, or over no link (empty).
    virtual void didHoverLink(VLDBrowserView&, const std::string& /*url*/) { }

    // Context menus: true keeps the engine's own menu.
    virtual bool shouldShowContextMenu(VLDBrowserView&, const VLDContextMenuInfo&) { return true; }
};

} // namespace velder
