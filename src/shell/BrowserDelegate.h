#pragma once

#include "bridge/VLDBrowserDelegate.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace velder {

// Forwards each report of a browser view to a slot, one for one, so that the tab need not be the view's
// delegate itself. An empty slot does nothing and gives the bridge's default answer.
class BrowserDelegate : public VLDBrowserDelegate {
public:
    std::function<void(const std::string&)> onAddressChanged;
    std::function<void(const std::string&)> onTitleChanged;
    std::function<void(const std::vector<std::string>&)> onFaviconsChanged;
    std::function<void(bool isLoading, bool canGoBack, bool canGoForward)> onLoadingStateChanged;
    std::function<void(std::int32_t code, const std::string& text, const std::string& failedURL)> onLoadFailed;
    std::function<std::shared_ptr<VLDBrowserView>(const std::string& url, bool isUserGesture)> makePopupHost;
    std::function<void(VLDBrowserView& popup)> onPopupCreated;
    std::function<void()> onBrowserCreated;
    std::function<void()> onBrowserDestroyed;
    std::function<void()> onEngineRequestedTearDown;
    std::function<void(const std::string& url, std::int32_t code)> onCertificateRefused;
    std::function<void(std::int64_t status)> onRenderProcessTerminated;
    std::function<bool(const std::string& url, bool foreground)> onOpenURLInNewTab;
    std::function<bool(std::shared_ptr<VLDPermissionRequest>)> handlePermissionRequest;
    std::function<void(std::shared_ptr<VLDPermissionRequest>)> onPermissionRequestWithdrawn;
    std::function<void(const VLDDownloadItem&)> onDownloadUpdated;
    std::function<void(std::int32_t count, std::int32_t activeMatch, bool isFinal)> onFindResult;
    std::function<bool(std::int32_t windowsKeyCode, std::uint32_t modifiers)> handleKey;
    std::function<bool(const VLDContextMenuInfo&)> onShowContextMenu;

    void didChangeAddress(VLDBrowserView&, const std::string& url) override;
    void didChangeTitle(VLDBrowserView&, const std::string& title) override;
    void didChangeFaviconURLs(VLDBrowserView&, const std::vector<std::string>& urls) override;
    void didChangeLoadingState(VLDBrowserView&, bool isLoading, bool canGoBack, bool canGoForward) override;
    void didFailLoad(VLDBrowserView&, std::int32_t code, const std::string& text, const std::string& url) override;
    std::shared_ptr<VLDBrowserView> hostViewForPopup(VLDBrowserView&, const std::string& url, bool gesture) override;
    void didCreatePopup(VLDBrowserView& opener, VLDBrowserView& popup) override;
    void didCreateBrowser(VLDBrowserView&) override;
    void willDestroyBrowser(VLDBrowserView&) override;
    void shouldTearDownForClose(VLDBrowserView&) override;
    void didRefuseCertificate(VLDBrowserView&, const std::string& url, std::int32_t code) override;
    void didTerminateRenderProcess(VLDBrowserView&, std::int64_t status) override;
    bool openURLInNewTab(VLDBrowserView&, const std::string& url, bool foreground) override;
    bool shouldHandlePermissionRequest(VLDBrowserView&, std::shared_ptr<VLDPermissionRequest> request) override;
    void didWithdrawPermissionRequest(VLDBrowserView&, std::shared_ptr<VLDPermissionRequest> request) override;
    bool decideDestinationForDownload(
        VLDBrowserView&, const VLDDownloadItem&, std::shared_ptr<VLDDownloadCallback>) override;
    void didUpdateDownload(VLDBrowserView&, const VLDDownloadItem& item) override;
    void didFindMatchCount(VLDBrowserView&, std::int32_t count, std::int32_t activeMatch, bool isFinal) override;
    bool shouldHandleKey(VLDBrowserView&, std::int32_t windowsKeyCode, std::uint32_t modifiers) override;
    bool shouldShowContextMenu(VLDBrowserView&, const VLDContextMenuInfo& info) override;
};

} // namespace velder
