#include "bridge/VLDInternalPages.h"

#include "bridge/VLDEngineRuntime.h"
#include "bridge/VLDMainThread.h"
#include "bridge/VLDSchemeHandler.h"

namespace velder {

bool VLDInternalPages::registerSource(VLDInternalPageSource source)
{
    if (!VLDEngineRuntime::isStarted() || !VLDIsMainThread()) {
        return false;
    }
    VLDSchemeHandler::registerScheme();
    VLDSchemeHandler::setSource(std::move(source));
    return true;
}

} // namespace velder
