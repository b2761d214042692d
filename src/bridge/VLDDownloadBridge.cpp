#include "bridge/VLDDownloadBridge.h"

#include "bridge/VLDBrowserViewImpl.h"
#include "bridge/VLDClient.h"
#include "bridge/VLDDownloadCallback.h"
#include "bridge/VLDDownloadItem.h"
#include "bridge/VLDDownloadPath.h"
#include "bridge/VLDMainThread.h"
#include "core/Log.h"
#include "glib/GCharPtr.h"
#include "glib/GObjectPtr.h"

#include <atomic>
#include <glib/gstdio.h>
#include <map>
#include <webkit/webkit.h>

namespace velder {

namespace {

constexpr const char* ownTransferKey = "velder-own-transfer";
constexpr const char* stateKey = "velder-download-state";

// What the bridge knows of one download beyond what the engine keeps.
struct DownloadState {
    std::uint32_t identifier = 0;
    std::string suggestedName;
    std::string reservedPath; // the empty file that holds a default name, until the engine writes to it
    bool failed = false;
    bool finished = false;
    // The view that asked and its owner, held until the end: a download outlives the tab it started in,
    // and its owner still hears how it ends.
    std::shared_ptr<VLDBrowserViewImpl> view;
    std::shared_ptr<VLDBrowserDelegate> owner;
};

DownloadState* stateOf(WebKitDownload* download)
{
    return static_cast<DownloadState*>(g_object_get_data(G_OBJECT(download), stateKey));
}

class DownloadCallback;

// The callbacks the owners were given, by download. An entry holds its callback weakly until it is
// answered (so that one an owner drops unanswered reaches its destructor and goes to the default path),
// strongly afterwards, until the download ends or its cancellation is carried out.
struct CallbackEntry {
    std::weak_ptr<DownloadCallback> pending;
    std::shared_ptr<DownloadCallback> answered;
};

std::map<std::uint32_t, CallbackEntry>& callbackTable()
{
    static std::map<std::uint32_t, CallbackEntry> table;
    return table;
}

std::uint32_t nextIdentifier = 1;

void answerDownload(WebKitDownload* download, const std::optional<std::string>& path, bool cancelled)
{
    if (cancelled) {
        webkit_download_cancel(download);
        return;
    }
    DownloadState* state = stateOf(download);
    std::string destination;
    if (path && !path->empty()) {
        destination = *path;
    } else {
        std::string name = VLDDownloadItem::sanitisedFilename(state ? state->suggestedName : std::string());
        auto reserved = VLDDownloadPath::reserveDefaultPath(name);
        if (!reserved) {
            log("Velder: no free name for the download \"" + name + "\" in " + VLDDownloadPath::downloadDirectory()
                + "; the download is cancelled.");
            webkit_download_cancel(download);
            return;
        }
        destination = *reserved;
        if (state) {
            state->reservedPath = destination;
        }
    }
    // A destination is either the user's choice, whose save dialog has asked about replacing a file, or a
    // name reserved for this download by an empty file of ours: the engine may write over both.
    webkit_download_set_allow_overwrite(download, TRUE);
    webkit_download_set_destination(download, destination.c_str());
}

class DownloadCallback final : public VLDDownloadCallback, public std::enable_shared_from_this<DownloadCallback> {
public:
    DownloadCallback(WebKitDownload* download, std::uint32_t identifier)
        : m_download(GObjectPtr<WebKitDownload>::retain(download))
        , m_identifier(identifier)
    {
    }

    ~DownloadCallback() override
    {
        if (!m_answered) {
            log("Velder: a download destination callback was dropped without an answer. Continuing to the default "
                "path. This is a bug: see VLDDownloadCallback.");
            answer(std::nullopt, false);
        }
    }

    void continueWithPath(const std::optional<std::string>& path) override { answer(path, false); }
    void cancel() override { answer(std::nullopt, true); }
    bool wasCancelled() const override { return m_cancelled; }
    bool isAnswered() const override { return m_answered; }

private:
    void answer(const std::optional<std::string>& path, bool cancelled)
    {
        if (m_answered.exchange(true)) {
            return;
        }
        m_cancelled = cancelled;
        // The reference goes with the work to the main thread; in the destructor no self is left to keep.
        WebKitDownload* download = m_download.release();
        std::weak_ptr<DownloadCallback> self = weak_from_this();
        std::uint32_t identifier = m_identifier;
        VLDRunOnMainThread([download, path, cancelled, self, identifier]() {
            if (auto callback = self.lock()) {
                auto found = callbackTable().find(identifier);
                if (found != callbackTable().end()) {
                    found->second.answered = callback;
                }
            }
            answerDownload(download, path, cancelled);
            g_object_unref(download);
        });
    }

    GObjectPtr<WebKitDownload> m_download;
    std::uint32_t m_identifier;
    std::atomic<bool> m_answered { false };
    std::atomic<bool> m_cancelled { false };
};

std::string lastPathComponent(const std::string& url)
{
    GUri* uri = g_uri_parse(url.c_str(), G_URI_FLAGS_NONE, nullptr);
    if (!uri) {
        return {};
    }
    std::string path = g_uri_get_path(uri);
    g_uri_unref(uri);
    while (!path.empty() && path.back() == '/') {
        path.pop_back();
    }
    size_t slash = path.rfind('/');
    std::string last = slash == std::string::npos ? path : path.substr(slash + 1);
    GCharPtr unescaped(g_uri_unescape_string(last.c_str(), nullptr));
    return unescaped ? std::string(unescaped.get()) : last;
}

VLDDownloadItem snapshot(WebKitDownload* download)
{
    DownloadState* state = stateOf(download);
    WebKitURIResponse* response = webkit_download_get_response(download);
    VLDDownloadItem item;
    item.identifier = state ? state->identifier : 0;
    if (WebKitURIRequest* request = webkit_download_get_request(download)) {
        item.url = webkit_uri_request_get_uri(request);
    }
    std::string name = state ? state->suggestedName : std::string();
    if (name.empty() && response) {
        if (const char* suggested = webkit_uri_response_get_suggested_filename(response)) {
            name = suggested;
        }
    }
    if (name.empty()) {
        name = lastPathComponent(item.url);
    }
    item.suggestedFilename = VLDDownloadItem::sanitisedFilename(name);
    if (const char* destination = webkit_download_get_destination(download)) {
        item.fullPath = destination;
    }
    item.receivedBytes = static_cast<std::int64_t>(webkit_download_get_received_data_length(download));
    item.totalBytes = response ? static_cast<std::int64_t>(webkit_uri_response_get_content_length(response)) : 0;
    item.percentComplete
        = item.totalBytes > 0 ? static_cast<std::int32_t>(webkit_download_get_estimated_progress(download) * 100) : -1;
    bool failed = state && state->failed;
    bool finished = state && state->finished;
    item.isInProgress = !failed && !finished;
    item.isComplete = finished && !failed;
    // The engine can't resume a download: an interrupted one is over, as a cancelled one is.
    item.isCanceled = failed;
    return item;
}

std::shared_ptr<VLDBrowserViewImpl> viewOf(WebKitDownload* download)
{
    WebKitWebView* webView = webkit_download_get_web_view(download);
    return webView ? VLDClient::viewForWebView(GTK_WIDGET(webView)) : nullptr;
}

void reportUpdate(WebKitDownload* download)
{
    DownloadState* state = stateOf(download);
    auto view = state && state->view ? state->view : viewOf(download);
    if (!state || !view) {
        return;
    }
    VLDDownloadItem item = snapshot(download);
    auto& table = callbackTable();
    if (auto found = table.find(state->identifier); found != table.end()) {
        auto callback = found->second.answered ? found->second.answered : found->second.pending.lock();
        if (callback && callback->wasCancelled()) {
            // This update carried out the owner's cancel: it isn't reported.
            table.erase(found);
            return;
        }
        if (item.isComplete || item.isCanceled) {
            table.erase(found);
        }
    }
    if (auto delegate = state->owner ? state->owner : view->delegate()) {
        delegate->didUpdateDownload(*view, item);
    }
}

gboolean onDecideDestination(WebKitDownload* download, const char* suggestedName, gpointer)
{
    DownloadState* state = stateOf(download);
    if (!state) {
        return FALSE;
    }
    state->suggestedName = suggestedName ? suggestedName : "";
    auto callback = std::make_shared<DownloadCallback>(download, state->identifier);
    auto view = viewOf(download);
    auto delegate = view ? view->delegate() : nullptr;
    if (view && delegate) {
        state->view = view;
        state->owner = delegate;
        callbackTable()[state->identifier].pending = callback;
        VLDDownloadItem item = snapshot(download);
        if (!delegate->decideDestinationForDownload(*view, item, callback) && !callback->isAnswered()) {
            callback->continueWithPath(std::nullopt);
        }
    } else {
        callback->continueWithPath(std::nullopt);
    }
    // Answered now or later through the callback.
    return TRUE;
}

void onCreatedDestination(WebKitDownload* download, const char*, gpointer)
{
    reportUpdate(download);
}

void onProgress(WebKitDownload* download, GParamSpec*, gpointer)
{
    reportUpdate(download);
}

void onFailed(WebKitDownload* download, GError*, gpointer)
{
    DownloadState* state = stateOf(download);
    if (!state) {
        return;
    }
    state->failed = true;
    // A name reserved for nothing is given back, unless something has been written to it after all.
    if (!state->reservedPath.empty()) {
        GStatBuf info;
        if (g_stat(state->reservedPath.c_str(), &info) == 0 && info.st_size == 0) {
            g_unlink(state->reservedPath.c_str());
        }
    }
    // A cancel the owner asked for ends here, unreported; any other failure is reported once, at the end.
    auto& table = callbackTable();
    if (auto found = table.find(state->identifier); found != table.end()) {
        auto callback = found->second.answered ? found->second.answered : found->second.pending.lock();
        if (callback && callback->wasCancelled()) {
            table.erase(found);
        }
    }
}

void onFinished(WebKitDownload* download, gpointer)
{
    DownloadState* state = stateOf(download);
    if (!state) {
        return;
    }
    state->finished = true;
    reportUpdate(download);
    state->view.reset();
    state->owner.reset();
    callbackTable().erase(state->identifier);
    g_signal_handlers_disconnect_matched(
        download, G_SIGNAL_MATCH_DATA, 0, 0, nullptr, nullptr, const_cast<char*>(stateKey));
}

} // namespace

void VLDDownloadBridge::markAsOwnTransfer(GObject* download)
{
    g_object_set_data(download, ownTransferKey, GINT_TO_POINTER(1));
}

void VLDDownloadBridge::downloadStarted(GObject* object)
{
    if (g_object_get_data(object, ownTransferKey)) {
        return;
    }
    WebKitDownload* download = WEBKIT_DOWNLOAD(object);
    auto* state = new DownloadState;
    state->identifier = nextIdentifier++;
    g_object_set_data_full(object, stateKey, state, [](gpointer data) { delete static_cast<DownloadState*>(data); });
    // The handlers are told apart from others by their data.
    gpointer tag = const_cast<char*>(stateKey);
    g_signal_connect(download, "decide-destination", G_CALLBACK(onDecideDestination), tag);
    g_signal_connect(download, "created-destination", G_CALLBACK(onCreatedDestination), tag);
    g_signal_connect(download, "notify::estimated-progress", G_CALLBACK(onProgress), tag);
    g_signal_connect(download, "failed", G_CALLBACK(onFailed), tag);
    g_signal_connect(download, "finished", G_CALLBACK(onFinished), tag);
}

std::size_t VLDDownloadBridge::callbackCountForTesting()
{
    return callbackTable().size();
}

} // namespace velder
