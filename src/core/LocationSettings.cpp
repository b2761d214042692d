#include "core/LocationSettings.h"

#include "core/UrlHelper.h"
#include "core/Vault.h"

namespace velder {

LocationSettings& LocationSettings::shared()
{
    static auto* settings = new LocationSettings();
    return *settings;
}

void LocationSettings::setMirror(std::shared_ptr<LocationMirror> mirror)
{
    m_mirror = std::move(mirror);
}

LocationAnswer LocationSettings::effective(const std::string& origin) const
{
    auto data = Vault::shared().snapshot();
    if (!data->settings.locationEnabled) {
        return LocationAnswer::ask;
    }
    auto found = data->locationSites.find(origin);
    if (found == data->locationSites.end()) {
        return LocationAnswer::ask;
    }
    return found->second ? LocationAnswer::allow : LocationAnswer::block;
}

void LocationSettings::mirrorEffective(const std::string& origin)
{
    if (m_mirror) {
        m_mirror->writeGlobal(origin, engineSetting(effective(origin)));
    }
}

void LocationSettings::store(LocationAnswer answer, const std::string& origin, bool isPrivate)
{
    if (isPrivate) {
        if (!m_mirror || !m_mirror->hasPrivateContext()) {
            return;
        }
        m_privateMirrorOrigins.insert(origin);
        m_mirror->writePrivate(origin, engineSetting(answer));
        return;
    }
    Vault::shared().update([&](VaultData& data) {
        if (answer == LocationAnswer::ask) {
            data.locationSites.erase(origin);
        } else {
            data.locationSites[origin] = answer == LocationAnswer::allow;
        }
    });
    mirrorEffective(origin);
}

void LocationSettings::pushMirror(const std::string& url, bool isPrivate)
{
    if (isPrivate) {
        return;
    }
    auto origin = UrlHelper::origin(url);
    if (!origin || !Vault::shared().snapshot()->locationSites.contains(*origin)) {
        return;
    }
    LocationAnswer answer = effective(*origin);
    if (m_mirror) {
        m_mirror->writeGlobal(*origin, engineSetting(answer));
    }
    if (answer == LocationAnswer::allow && onMirroredAllow) {
        onMirroredAllow();
    }
}

void LocationSettings::setEnabled(bool enabled)
{
    if (Vault::shared().snapshot()->settings.locationEnabled == enabled) {
        return;
    }
    Vault::shared().update([&](VaultData& data) { data.settings.locationEnabled = enabled; });
}

void LocationSettings::forgetAll()
{
    rewriteMirror(true);
    Vault::shared().update([](VaultData& data) { data.locationSites.clear(); });
}

void LocationSettings::startWatchingTheGlobalSwitch()
{
    if (m_switchWatch) {
        return;
    }
    m_lastSeenEnabled = Vault::shared().snapshot()->settings.locationEnabled;
    m_switchWatch = NotificationCenter::defaultCenter().addObserver(
        Vault::settingsDidChangeNotification, [this](const Notification&) {
            bool enabled = Vault::shared().snapshot()->settings.locationEnabled;
            if (m_lastSeenEnabled != enabled) {
                m_lastSeenEnabled = enabled;
                rewriteMirror(false);
            }
        });
}

void LocationSettings::rewriteMirror(bool forcingAsk)
{
    if (!m_mirror) {
        return;
    }
    std::map<std::string, bool> sites = Vault::shared().snapshot()->locationSites;
    for (const auto& [origin, allowed] : sites) {
        (void)allowed;
        auto data = Vault::shared().snapshot(); // each origin reads the switch and its entry anew
        int value = engineSetting(LocationAnswer::ask);
        auto entry = data->locationSites.find(origin);
        if (!forcingAsk && data->settings.locationEnabled && entry != data->locationSites.end()) {
            value = engineSetting(entry->second ? LocationAnswer::allow : LocationAnswer::block);
        }
        m_mirror->writeGlobal(origin, value);
    }
    if (m_mirror->hasPrivateContext()) {
        bool enabled = Vault::shared().snapshot()->settings.locationEnabled;
        for (const auto& origin : m_privateMirrorOrigins) {
            m_mirror->writePrivate(
                origin, engineSetting(forcingAsk || !enabled ? LocationAnswer::ask : LocationAnswer::allow));
        }
        if (forcingAsk) {
            m_privateMirrorOrigins.clear();
        }
    }
}

} // namespace velder
