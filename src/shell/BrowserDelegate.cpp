#include "shell/BrowserDelegate.h"

#include "bridge/VLDBrowserView.h"
#include "shell/Downloads.h"

#include <gtk/gtk.h>

namespace velder {

void BrowserDelegate::didChangeAddress(VLDBrowserView&, const std::string& url)
{
    if (onAddressChanged) {
        onAddressChanged(url);
    }
}

void BrowserDelegate::didChangeTitle(VLDBrowserView&, const std::string& title)
{
    if (onTitleChanged) {
        onTitleChanged(title);
    }
}

void BrowserDelegate::didChangeFaviconURLs(VLDBrowserView&, const std::vector<std::string>& urls)
{
    if (onFaviconsChanged) {
        onFaviconsChanged(urls);
    }
}

void BrowserDelegate::didChangeLoadingState(VLDBrowserView&, bool isLoading, bool canGoBack, bool canGoForward)
{
    if (onLoadingStateChanged) {
        onLoadingStateChanged(isLoading, canGoBack, canGoForward);
    }
}

void BrowserDelegate::didFailLoad(VLDBrowserView&, std::int32_t code, const std::string& text, const std::string& url)
{
    if (onLoadFailed) {
        onLoadFailed(code, text, url);
    }
}

std::shared_ptr<VLDBrowserView> BrowserDelegate::hostViewForPopup(VLDBrowserView&, const std::string& url, bool gesture)
{
    return makePopupHost ? makePopupHost(url, gesture) : nullptr;
}

void BrowserDelegate::didCreatePopup(VLDBrowserView&, VLDBrowserView& popup)
{
    if (onPopupCreated) {
        onPopupCreated(popup);
    }
}

void BrowserDelegate::didCreateBrowser(VLDBrowserView&)
{
    if (onBrowserCreated) {
        onBrowserCreated();
    }
}

void BrowserDelegate::willDestroyBrowser(VLDBrowserView&)
{
    if (onBrowserDestroyed) {
        onBrowserDestroyed();
    }
}

void BrowserDelegate::shouldTearDownForClose(VLDBrowserView&)
{
    if (onEngineRequestedTearDown) {
        onEngineRequestedTearDown();
    }
}

void BrowserDelegate::didRefuseCertificate(VLDBrowserView&, const std::string& url, std::int32_t code)
{
    if (onCertificateRefused) {
        onCertificateRefused(url, code);
    }
}

void BrowserDelegate::didTerminateRenderProcess(VLDBrowserView&, std::int64_t status)
{
    if (onRenderProcessTerminated) {
        onRenderProcessTerminated(status);
    }
}

bool BrowserDelegate::openURLInNewTab(VLDBrowserView&, const std::string& url, bool foreground)
{
    return onOpenURLInNewTab ? onOpenURLInNewTab(url, foreground) : false;
}

bool BrowserDelegate::shouldHandlePermissionRequest(VLDBrowserView&, std::shared_ptr<VLDPermissionRequest> request)
{
    return handlePermissionRequest ? handlePermissionRequest(std::move(request)) : false;
}

void BrowserDelegate::didWithdrawPermissionRequest(VLDBrowserView&, std::shared_ptr<VLDPermissionRequest> request)
{
    if (onPermissionRequestWithdrawn) {
        onPermissionRequestWithdrawn(std::move(request));
    }
}

bool BrowserDelegate::decideDestinationForDownload(
    VLDBrowserView& view, const VLDDownloadItem& item, std::shared_ptr<VLDDownloadCallback> callback)
{
    // No slot: the question goes straight to the downloads, over the view's window.
    GtkRoot* root = view.widget() ? gtk_widget_get_root(view.widget()) : nullptr;
    Downloads::decideDestination(item, GTK_IS_WINDOW(root) ? GTK_WINDOW(root) : nullptr, std::move(callback));
    return true;
}

void BrowserDelegate::didUpdateDownload(VLDBrowserView&, const VLDDownloadItem& item)
{
    if (onDownloadUpdated) {
        onDownloadUpdated(item);
    }
}

void BrowserDelegate::didFindMatchCount(VLDBrowserView&, std::int32_t count, std::int32_t activeMatch, bool isFinal)
{
    if (onFindResult) {
        onFindResult(count, activeMatch, isFinal);
    }
}

bool BrowserDelegate::shouldHandleKey(VLDBrowserView&, std::int32_t windowsKeyCode, std::uint32_t modifiers)
{
    return handleKey ? handleKey(windowsKeyCode, modifiers) : false;
}

bool BrowserDelegate::shouldShowContextMenu(VLDBrowserView&, const VLDContextMenuInfo& info)
{
    return onShowContextMenu ? onShowContextMenu(info) : true;
}

} // namespace velder
