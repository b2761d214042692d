#pragma once

#include <memory>
#include <string>

namespace velder {

// A network session: the persistent one of ordinary tabs, or an in-memory one for private tabs. It keeps
// the per-origin geolocation setting that the bridge consults before asking the shell.
class VLDRequestContext {
public:
    enum GeolocationSetting : int { settingDefault = 0, settingAllow = 1, settingBlock = 2, settingAsk = 3 };

    // The persistent session, made once (the engine must be started).
    static std::shared_ptr<VLDRequestContext> globalContext();
    // A fresh ephemeral session on each call: nothing reaches the disk, nothing is shared.
    static std::shared_ptr<VLDRequestContext> inMemoryContext();

    virtual ~VLDRequestContext() = default;
    // Any thread; in force once the main loop has run the posted write.
    virtual void setGeolocationSetting(int value, const std::string& origin) = 0;
    // Main thread; off it, logged and settingDefault.
    virtual int geolocationSettingForOrigin(const std::string& origin) const = 0;
    virtual bool isEphemeral() const = 0;
};

} // namespace velder
