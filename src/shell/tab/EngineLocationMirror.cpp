#include "shell/tab/EngineLocationMirror.h"

#include "bridge/VLDRequestContext.h"
#include "shell/tab/PrivateSession.h"

namespace velder {

void EngineLocationMirror::writeGlobal(const std::string& origin, int engineSetting)
{
    if (auto context = VLDRequestContext::globalContext()) {
        context->setGeolocationSetting(engineSetting, origin);
    }
}

void EngineLocationMirror::writePrivate(const std::string& origin, int engineSetting)
{
    if (auto context = PrivateSession::current()) {
        context->setGeolocationSetting(engineSetting, origin);
    }
}

bool EngineLocationMirror::hasPrivateContext() const
{
    return PrivateSession::current() != nullptr;
}

} // namespace velder
