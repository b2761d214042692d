#include "bridge/VLDRequestContext.h"

#include "bridge/VLDDownloadBridge.h"
#include "bridge/VLDMainThread.h"
#include "bridge/VLDRequestContextImpl.h"
#include "core/Log.h"

#include <webkit/webkit.h>

namespace velder {

namespace {

std::shared_ptr<VLDRequestContextImpl>& globalContextSlot()
{
    static std::shared_ptr<VLDRequestContextImpl> context;
    return context;
}

void onDownloadStarted(WebKitNetworkSession*, WebKitDownload* download, gpointer)
{
    VLDDownloadBridge::downloadStarted(G_OBJECT(download));
}

} // namespace

VLDRequestContextImpl::VLDRequestContextImpl(GObjectPtr<GObject> session)
    : m_session(std::move(session))
{
    g_signal_connect(m_session.get(), "download-started", G_CALLBACK(onDownloadStarted), nullptr);
}

VLDRequestContextImpl::~VLDRequestContextImpl()
{
    g_signal_handlers_disconnect_by_func(m_session.get(), reinterpret_cast<gpointer>(onDownloadStarted), nullptr);
}

void VLDRequestContextImpl::startGlobalContext(const std::string& dataDirectory, const std::string& cacheDirectory)
{
    WebKitNetworkSession* session = webkit_network_session_new(dataDirectory.c_str(), cacheDirectory.c_str());
    // Without this the engine keeps cookies in memory only.
    std::string cookieFile = dataDirectory + "/cookies.sqlite";
    webkit_cookie_manager_set_persistent_storage(webkit_network_session_get_cookie_manager(session), cookieFile.c_str(),
        WEBKIT_COOKIE_PERSISTENT_STORAGE_SQLITE);
    globalContextSlot() = std::make_shared<VLDRequestContextImpl>(GObjectPtr<GObject>::adopt(G_OBJECT(session)));
}

void VLDRequestContextImpl::stopGlobalContext()
{
    globalContextSlot().reset();
}

std::shared_ptr<VLDRequestContext> VLDRequestContext::globalContext()
{
    return globalContextSlot();
}

std::shared_ptr<VLDRequestContext> VLDRequestContext::inMemoryContext()
{
    return std::make_shared<VLDRequestContextImpl>(
        GObjectPtr<GObject>::adopt(G_OBJECT(webkit_network_session_new_ephemeral())));
}

std::string VLDRequestContextImpl::canonicalOrigin(const std::string& url)
{
    if (url.empty()) {
        return {};
    }
    WebKitSecurityOrigin* origin = webkit_security_origin_new_for_uri(url.c_str());
    if (!origin) {
        return {};
    }
    char* text = webkit_security_origin_to_string(origin);
    std::string result = text ? text : "";
    g_free(text);
    webkit_security_origin_unref(origin);
    return result;
}

void VLDRequestContextImpl::setGeolocationSetting(int value, const std::string& origin)
{
    // Always posted, so a write is never in force before the main loop has run it.
    VLDPostToMainThread([self = shared_from_this(), value, origin]() {
        std::string key = canonicalOrigin(origin);
        if (key.empty()) {
            return;
        }
        if (value == settingDefault) {
            self->m_geolocationSettings.erase(key);
        } else {
            self->m_geolocationSettings[key] = value;
        }
    });
}

int VLDRequestContextImpl::geolocationSettingForOrigin(const std::string& origin) const
{
    if (!VLDIsMainThread()) {
        log("Velder: geolocationSettingForOrigin: called off the main thread for " + origin
            + ". Returning Default. Wrap the read in VLDRunOnMainThread.");
        return settingDefault;
    }
    auto found = m_geolocationSettings.find(canonicalOrigin(origin));
    return found == m_geolocationSettings.end() ? settingDefault : found->second;
}

bool VLDRequestContextImpl::isEphemeral() const
{
    return webkit_network_session_is_ephemeral(WEBKIT_NETWORK_SESSION(m_session.get()));
}

} // namespace velder
