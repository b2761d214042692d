#include "bridge/VLDIconFetch.h"

#include "bridge/VLDDownloadBridge.h"
#include "bridge/VLDMainThread.h"
#include "glib/GCharPtr.h"
#include "glib/GObjectPtr.h"

#include <glib/gstdio.h>
#include <list>
#include <memory>
#include <unistd.h>
#include <webkit/webkit.h>

namespace velder::VLDIconFetch {

namespace {

struct Fetch {
    GObjectPtr<WebKitDownload> download;
    std::uint64_t maxBytes = 0;
    Completion completion;
    std::string temporaryFile;
    bool failed = false;
    bool refused = false;
};

std::list<std::unique_ptr<Fetch>>& inFlight()
{
    static std::list<std::unique_ptr<Fetch>> fetches;
    return fetches;
}

void complete(Completion completion, std::optional<std::vector<std::uint8_t>> result)
{
    VLDPostToMainThread(
        [completion = std::move(completion), result = std::move(result)]() mutable { completion(std::move(result)); });
}

// Takes the fetch out of the list, deletes its file and completes it, once.
void end(Fetch* fetch, std::optional<std::vector<std::uint8_t>> result)
{
    auto& fetches = inFlight();
    for (auto it = fetches.begin(); it != fetches.end(); ++it) {
        if (it->get() != fetch) {
            continue;
        }
        std::unique_ptr<Fetch> owned = std::move(*it);
        fetches.erase(it);
        g_signal_handlers_disconnect_by_data(owned->download.get(), owned.get());
        if (!owned->temporaryFile.empty()) {
            g_unlink(owned->temporaryFile.c_str());
        }
        complete(std::move(owned->completion), std::move(result));
        return;
    }
}

guint responseStatus(WebKitDownload* download)
{
    WebKitURIResponse* response = webkit_download_get_response(download);
    return response ? webkit_uri_response_get_status_code(response) : 0;
}

gboolean onDecideDestination(WebKitDownload* download, const char*, gpointer data)
{
    auto* fetch = static_cast<Fetch*>(data);
    WebKitURIResponse* response = webkit_download_get_response(download);
    guint64 length = response ? webkit_uri_response_get_content_length(response) : 0;
    if (responseStatus(download) != 200 || length > fetch->maxBytes) {
        fetch->refused = true;
        webkit_download_cancel(download);
        return TRUE;
    }
    char* path = nullptr;
    int fd = g_file_open_tmp("velder-icon-XXXXXX", &path, nullptr);
    if (fd < 0) {
        fetch->refused = true;
        webkit_download_cancel(download);
        return TRUE;
    }
    close(fd);
    fetch->temporaryFile = path;
    g_free(path);
    webkit_download_set_allow_overwrite(download, TRUE);
    webkit_download_set_destination(download, fetch->temporaryFile.c_str());
    return TRUE;
}

void onReceivedData(WebKitDownload* download, guint64, gpointer data)
{
    auto* fetch = static_cast<Fetch*>(data);
    if (!fetch->refused && webkit_download_get_received_data_length(download) > fetch->maxBytes) {
        fetch->refused = true;
        webkit_download_cancel(download);
    }
}

void onFailed(WebKitDownload*, GError*, gpointer data)
{
    static_cast<Fetch*>(data)->failed = true;
}

void onFinished(WebKitDownload* download, gpointer data)
{
    auto* fetch = static_cast<Fetch*>(data);
    std::optional<std::vector<std::uint8_t>> result;
    if (!fetch->failed && !fetch->refused && !fetch->temporaryFile.empty() && responseStatus(download) == 200) {
        char* contents = nullptr;
        gsize length = 0;
        // The limit is checked again: a fast server may have written more before a cancel landed.
        if (g_file_get_contents(fetch->temporaryFile.c_str(), &contents, &length, nullptr) && length > 0
            && length <= fetch->maxBytes) {
            result.emplace(contents, contents + length);
        }
        g_free(contents);
    }
    end(fetch, std::move(result));
}

} // namespace

void start(GObject* session, const std::string& url, std::uint64_t maxBytes, Completion completion)
{
    if (!session || url.empty()) {
        complete(std::move(completion), std::nullopt);
        return;
    }
    WebKitDownload* download = webkit_network_session_download_uri(WEBKIT_NETWORK_SESSION(session), url.c_str());
    // Marked before the session announces it, so the download flow leaves it alone.
    VLDDownloadBridge::markAsOwnTransfer(G_OBJECT(download));
    auto fetch = std::make_unique<Fetch>();
    fetch->download = GObjectPtr<WebKitDownload>::adopt(download);
    fetch->maxBytes = maxBytes;
    fetch->completion = std::move(completion);
    g_signal_connect(download, "decide-destination", G_CALLBACK(onDecideDestination), fetch.get());
    g_signal_connect(download, "received-data", G_CALLBACK(onReceivedData), fetch.get());
    g_signal_connect(download, "failed", G_CALLBACK(onFailed), fetch.get());
    g_signal_connect(download, "finished", G_CALLBACK(onFinished), fetch.get());
    inFlight().push_back(std::move(fetch));
}

void cancelAll()
{
    while (!inFlight().empty()) {
        Fetch* fetch = inFlight().front().get();
        WebKitDownload* download = fetch->download.get();
        g_signal_handlers_disconnect_by_data(download, fetch);
        webkit_download_cancel(download);
        end(fetch, std::nullopt);
    }
}

} // namespace velder::VLDIconFetch
