#include "bridge/VLDPermissionBridge.h"

#include "bridge/VLDBrowserViewImpl.h"
#include "bridge/VLDClient.h"
#include "bridge/VLDMainThread.h"
#include "bridge/VLDPermissionRequest.h"
#include "bridge/VLDRequestContextImpl.h"
#include "core/Format.h"
#include "core/Log.h"
#include "glib/GCharPtr.h"
#include "glib/GObjectPtr.h"

#include <atomic>
#include <map>
#include <string_view>
#include <unordered_map>
#include <webkit/webkit.h>

namespace velder {

namespace {

class PermissionRequest;

// The parked requests, by view and then by prompt.
using ParkedRequests = std::map<std::uint64_t, std::shared_ptr<PermissionRequest>>;

std::unordered_map<std::uint64_t, ParkedRequests>& parkedTable()
{
    static std::unordered_map<std::uint64_t, ParkedRequests> table;
    return table;
}

std::uint64_t nextPromptId = 1;

void dismiss(std::uint64_t viewIdentifier, std::uint64_t promptId);

// A request answered exactly once. The engine would deny one dropped unanswered by itself; this adds the
// guard against a second answer and the log line that names the path that failed.
class PermissionRequest final : public VLDPermissionRequest {
public:
    PermissionRequest(
        GObject* request, Kind kind, std::string origin, std::uint64_t promptId, std::uint64_t viewIdentifier)
        : m_request(GObjectPtr<GObject>::retain(request))
        , m_kind(kind)
        , m_origin(std::move(origin))
        , m_promptId(promptId)
        , m_viewIdentifier(viewIdentifier)
    {
    }

    ~PermissionRequest() override
    {
        if (!m_answered) {
            log(format("Velder: DROPPED PERMISSION REQUEST for %s (kind %ld, prompt %llu). Denying from dealloc. A "
                       "code path failed to answer it -- see VLDPermissionRequest.",
                m_origin.c_str(), static_cast<long>(m_kind), static_cast<unsigned long long>(m_promptId)));
            answer(false);
        }
    }

    Kind kind() const override { return m_kind; }
    const std::string& origin() const override { return m_origin; }
    std::uint64_t promptId() const override { return m_promptId; }
    bool isAnswered() const override { return m_answered; }
    void allow() override { answer(true); }
    void deny() override { answer(false); }

    // The page went: no answer may follow, and none is given.
    void invalidateAfterWithdrawal()
    {
        m_answered = true;
        m_request.reset();
    }

private:
    void answer(bool allowed)
    {
        if (m_answered.exchange(true)) {
            return;
        }
        GObject* request = m_request.release();
        if (!request) {
            return;
        }
        VLDRunOnMainThread([request, allowed]() {
            if (allowed) {
                webkit_permission_request_allow(WEBKIT_PERMISSION_REQUEST(request));
            } else {
                webkit_permission_request_deny(WEBKIT_PERMISSION_REQUEST(request));
            }
            g_object_unref(request);
        });
        // An answered prompt ends, as a withdrawn one does: if it was parked, it leaves the table next.
        VLDPostToMainThread(
            [viewIdentifier = m_viewIdentifier, promptId = m_promptId]() { dismiss(viewIdentifier, promptId); });
    }

    GObjectPtr<GObject> m_request;
    Kind m_kind;
    std::string m_origin;
    std::uint64_t m_promptId;
    std::uint64_t m_viewIdentifier;
    std::atomic<bool> m_answered { false };
};

void dismiss(std::uint64_t viewIdentifier, std::uint64_t promptId)
{
    auto& table = parkedTable();
    auto row = table.find(viewIdentifier);
    if (row == table.end()) {
        return;
    }
    auto found = row->second.find(promptId);
    if (found == row->second.end()) {
        return;
    }
    std::shared_ptr<PermissionRequest> request = found->second;
    row->second.erase(found);
    if (row->second.empty()) {
        table.erase(row);
    }
    request->invalidateAfterWithdrawal();
    if (auto view = VLDClient::viewForIdentifier(viewIdentifier)) {
        if (auto delegate = view->delegate()) {
            delegate->didWithdrawPermissionRequest(*view, request);
        }
    }
}

} // namespace

void VLDPermissionBridge::handleRequest(const std::shared_ptr<VLDBrowserViewImpl>& view, GObject* object)
{
    if (WEBKIT_IS_USER_MEDIA_PERMISSION_REQUEST(object)) {
        // Camera and microphone: refused at once, without a word to the owner.
        webkit_permission_request_deny(WEBKIT_PERMISSION_REQUEST(object));
        return;
    }
    bool geolocation = WEBKIT_IS_GEOLOCATION_PERMISSION_REQUEST(object);
    auto kind = geolocation ? VLDPermissionRequest::Kind::geolocation : VLDPermissionRequest::Kind::other;
    // The engine's request names no origin: it is the page's.
    const char* pageURL = view->webView() ? webkit_web_view_get_uri(WEBKIT_WEB_VIEW(view->webView())) : nullptr;
    std::string origin = VLDRequestContextImpl::canonicalOrigin(pageURL ? pageURL : "");
    std::uint64_t promptId = nextPromptId++;
    auto request = std::make_shared<PermissionRequest>(object, kind, origin, promptId, view->identifier());
    if (!geolocation) {
        request->deny();
        return;
    }
    // The session's stored answer decides first, as the engine's own store would.
    switch (view->requestContext() ? view->requestContext()->geolocationSettingForOrigin(origin)
                                   : VLDRequestContext::settingDefault) {
    case VLDRequestContext::settingAllow:
        request->allow();
        return;
    case VLDRequestContext::settingBlock:
        request->deny();
        return;
    default:
        break;
    }
    auto delegate = view->delegate();
    if (!delegate) {
        request->deny();
        return;
    }
    // Parked before the owner is asked: it may answer at once, and the page may go before a later answer.
    parkedTable()[view->identifier()][promptId] = request;
    if (!delegate->shouldHandlePermissionRequest(*view, request)) {
        auto& table = parkedTable();
        if (auto row = table.find(view->identifier()); row != table.end()) {
            row->second.erase(promptId);
            if (row->second.empty()) {
                table.erase(row);
            }
        }
        request->deny();
    }
}

bool VLDPermissionBridge::answerStateQuery(const std::shared_ptr<VLDBrowserViewImpl>& view, void* engineQuery)
{
    auto* query = static_cast<WebKitPermissionStateQuery*>(engineQuery);
    std::string_view name = webkit_permission_state_query_get_name(query);
    using State = VLDPermissionRequest::State;
    State state = State::prompt;
    if (name == "camera" || name == "microphone") {
        state = State::denied;
    } else if (name == "geolocation") {
        GCharPtr text(webkit_security_origin_to_string(webkit_permission_state_query_get_security_origin(query)));
        std::string origin = VLDRequestContextImpl::canonicalOrigin(text ? text.get() : "");
        int stored = view->requestContext() ? view->requestContext()->geolocationSettingForOrigin(origin)
                                            : VLDRequestContext::settingDefault;
        if (stored == VLDRequestContext::settingAllow) {
            state = State::granted;
        } else if (stored == VLDRequestContext::settingBlock) {
            state = State::denied;
        } else if (auto delegate = view->delegate()) {
            state = delegate->locationStateForOrigin(*view, origin);
        }
    } else {
        return false;
    }
    webkit_permission_state_query_finish(query,
        state == State::granted      ? WEBKIT_PERMISSION_STATE_GRANTED
            : state == State::denied ? WEBKIT_PERMISSION_STATE_DENIED
                                     : WEBKIT_PERMISSION_STATE_PROMPT);
    return true;
}

void VLDPermissionBridge::withdrawParkedRequests(const std::shared_ptr<VLDBrowserViewImpl>& view)
{
    auto& table = parkedTable();
    auto row = table.find(view->identifier());
    if (row == table.end()) {
        return;
    }
    ParkedRequests requests = std::move(row->second);
    table.erase(row);
    auto delegate = view->delegate();
    for (auto& [promptId, request] : requests) {
        request->invalidateAfterWithdrawal();
        if (delegate) {
            delegate->didWithdrawPermissionRequest(*view, request);
        }
    }
}

void VLDPermissionBridge::answerParkedPermissions(std::uint64_t viewIdentifier)
{
    auto& table = parkedTable();
    auto row = table.find(viewIdentifier);
    if (row == table.end()) {
        return;
    }
    ParkedRequests requests = std::move(row->second);
    table.erase(row);
    for (auto& [promptId, request] : requests) {
        request->deny();
    }
}

std::shared_ptr<VLDPermissionRequest> VLDPermissionBridge::requestForTesting(
    VLDPermissionRequest::Kind kind, const std::string& origin)
{
    return std::make_shared<PermissionRequest>(nullptr, kind, origin, nextPromptId++, 0);
}

std::size_t VLDPermissionBridge::parkedCountForTesting(std::uint64_t viewIdentifier)
{
    auto row = parkedTable().find(viewIdentifier);
    return row == parkedTable().end() ? 0 : row->second.size();
}

} // namespace velder
