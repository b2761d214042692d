#pragma once

#include "bridge/VLDRequestContext.h"

#include "glib/GObjectPtr.h"

#include <memory>
#include <string>
#include <unordered_map>

namespace velder {

// A network session of the engine, with the per-origin geolocation answers the bridge consults before it
// asks the shell (the engine keeps no such store of its own). Every session reports its downloads to the
// download bridge.
class VLDRequestContextImpl final : public VLDRequestContext,
                                    public std::enable_shared_from_this<VLDRequestContextImpl> {
public:
    // Takes over the reference to `session`, an engine network session.
    explicit VLDRequestContextImpl(GObjectPtr<GObject> session);
    ~VLDRequestContextImpl() override;

    // The persistent session of the profile, made by the engine runtime at start and dropped at shutdown.
    static void startGlobalContext(const std::string& dataDirectory, const std::string& cacheDirectory);
    static void stopGlobalContext();

    // The engine network session.
    GObject* networkSession() const { return m_session.get(); }

    // An address's origin as the engine writes it ("https://a.example" for "HTTPS://A.example:443/x"), or ""
    // when it has none.
    static std::string canonicalOrigin(const std::string& url);

    void setGeolocationSetting(int value, const std::string& origin) override;
    int geolocationSettingForOrigin(const std::string& origin) const override;
    bool isEphemeral() const override;

private:
    GObjectPtr<GObject> m_session;
    std::unordered_map<std::string, int> m_geolocationSettings;
};

} // namespace velder
