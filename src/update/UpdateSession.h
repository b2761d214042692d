#pragma once

#include "glib/GObjectPtr.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

typedef struct _SoupSession SoupSession;
typedef struct _GCancellable GCancellable;

namespace velder {

// The updater's HTTPS client: one libsoup session for the feed and its downloads. With trust anchors (a
// PEM file of certificate authorities) it trusts only those, which pins the feed's server; without, the
// system's authorities. Main thread only; a request still running when the session goes is cancelled and
// its callback never runs.
class UpdateSession {
public:
    // The session, or nothing with the reason in `error` when the anchors can't be read.
    static std::unique_ptr<UpdateSession> create(const std::optional<std::string>& trustAnchors, std::string* error);
    ~UpdateSession();
    UpdateSession(const UpdateSession&) = delete;
    UpdateSession& operator=(const UpdateSession&) = delete;

    // The body of a successful response, or the reason there is none.
    using FetchDone = std::function<void(std::optional<std::string> body, const std::string& error)>;
    void fetch(const std::string& url, FetchDone done);
    // Streams a successful response's body into the file (replacing it); nothing, or the reason it failed.
    using DownloadDone = std::function<void(const std::optional<std::string>& error)>;
    void download(const std::string& url, const std::string& path, DownloadDone done);

private:
    UpdateSession() = default;

    GObjectPtr<SoupSession> m_session;
    GObjectPtr<GCancellable> m_cancellable;
};

} // namespace velder
