#include "update/UpdateSession.h"

#include "core/AppInfo.h"

#include <gio/gio.h>
#include <libsoup/soup.h>

namespace velder {

namespace {

// Why a finished request brought nothing usable: the transport's error, else a status that isn't success.
std::string failureOf(SoupMessage* message, GError* error)
{
    if (error) {
        return error->message;
    }
    guint status = soup_message_get_status(message);
    if (status < 200 || status > 299) {
        return "the server answered " + std::to_string(status);
    }
    return {};
}

bool wasCancelled(GError* error)
{
    return error && g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED);
}

struct Fetch {
    GObjectPtr<SoupMessage> message;
    UpdateSession::FetchDone done;
};

struct Download {
    GObjectPtr<SoupMessage> message;
    GObjectPtr<GCancellable> cancellable;
    std::string path;
    UpdateSession::DownloadDone done;
};

} // namespace

std::unique_ptr<UpdateSession> UpdateSession::create(const std::optional<std::string>& trustAnchors, std::string* error)
{
    std::unique_ptr<UpdateSession> session(new UpdateSession());
    std::string agent = "Velder/" + AppInfo::version();
    session->m_session = GObjectPtr<SoupSession>::adopt(
        soup_session_new_with_options("user-agent", agent.c_str(), "timeout", 60u, nullptr));
    session->m_cancellable = GObjectPtr<GCancellable>::adopt(g_cancellable_new());
    if (trustAnchors) {
        GError* failure = nullptr;
        GTlsDatabase* database = g_tls_file_database_new(trustAnchors->c_str(), &failure);
        if (!database) {
            if (error) {
                *error = "the feed's trust anchors can't be read: " + std::string(failure->message);
            }
            g_error_free(failure);
            return nullptr;
        }
        soup_session_set_tls_database(session->m_session.get(), database);
        g_object_unref(database);
    }
    return session;
}

UpdateSession::~UpdateSession()
{
    g_cancellable_cancel(m_cancellable.get());
}

void UpdateSession::fetch(const std::string& url, FetchDone done)
{
    SoupMessage* message = soup_message_new(SOUP_METHOD_GET, url.c_str());
    if (!message) {
        done(std::nullopt, "\"" + url + "\" is not an address");
        return;
    }
    auto* request = new Fetch { GObjectPtr<SoupMessage>::adopt(message), std::move(done) };
    soup_session_send_and_read_async(
        m_session.get(), message, G_PRIORITY_DEFAULT, m_cancellable.get(),
        [](GObject* source, GAsyncResult* result, gpointer data) {
            std::unique_ptr<Fetch> request(static_cast<Fetch*>(data));
            GError* error = nullptr;
            GBytes* bytes = soup_session_send_and_read_finish(SOUP_SESSION(source), result, &error);
            if (!wasCancelled(error)) {
                std::string failure = failureOf(request->message.get(), error);
                if (failure.empty()) {
                    gsize size = 0;
                    auto* data = static_cast<const char*>(g_bytes_get_data(bytes, &size));
                    request->done(std::string(data ? data : "", size), {});
                } else {
                    request->done(std::nullopt, failure);
                }
            }
            g_clear_error(&error);
            if (bytes) {
                g_bytes_unref(bytes);
            }
        },
        request);
}

void UpdateSession::download(const std::string& url, const std::string& path, DownloadDone done)
{
    SoupMessage* message = soup_message_new(SOUP_METHOD_GET, url.c_str());
    if (!message) {
        done("\"" + url + "\" is not an address");
        return;
    }
    auto* request = new Download { GObjectPtr<SoupMessage>::adopt(message),
        GObjectPtr<GCancellable>::retain(m_cancellable.get()), path, std::move(done) };
    soup_session_send_async(
        m_session.get(), message, G_PRIORITY_DEFAULT, m_cancellable.get(),
        [](GObject* source, GAsyncResult* result, gpointer data) {
            std::unique_ptr<Download> request(static_cast<Download*>(data));
            GError* error = nullptr;
            GInputStream* input = soup_session_send_finish(SOUP_SESSION(source), result, &error);
            std::string failure = wasCancelled(error) ? std::string() : failureOf(request->message.get(), error);
            GFileOutputStream* output = nullptr;
            if (!error && failure.empty()) {
                GFile* file = g_file_new_for_path(request->path.c_str());
                output = g_file_replace(file, nullptr, FALSE, G_FILE_CREATE_PRIVATE, nullptr, &error);
                g_object_unref(file);
                if (!output) {
                    failure = error->message;
                }
            }
            if (!output) {
                if (!wasCancelled(error)) {
                    request->done(failure);
                }
                g_clear_error(&error);
                g_clear_object(&input);
                return;
            }
            GCancellable* cancellable = request->cancellable.get();
            g_output_stream_splice_async(
                G_OUTPUT_STREAM(output), input,
                GOutputStreamSpliceFlags(G_OUTPUT_STREAM_SPLICE_CLOSE_SOURCE | G_OUTPUT_STREAM_SPLICE_CLOSE_TARGET),
                G_PRIORITY_DEFAULT, cancellable,
                [](GObject* stream, GAsyncResult* spliced, gpointer data) {
                    std::unique_ptr<Download> request(static_cast<Download*>(data));
                    GError* error = nullptr;
                    if (g_output_stream_splice_finish(G_OUTPUT_STREAM(stream), spliced, &error) < 0) {
                        if (!wasCancelled(error)) {
                            request->done(std::string(error->message));
                        }
                    } else {
                        request->done(std::nullopt);
                    }
                    g_clear_error(&error);
                },
                request.release());
            g_object_unref(output);
            g_object_unref(input);
        },
        request);
}

} // namespace velder
