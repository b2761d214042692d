#include "shell/tab/PrivateSession.h"

#include "bridge/VLDRequestContext.h"
#include "core/LocationSettings.h"

namespace velder {

namespace {

std::shared_ptr<VLDRequestContext> context;
int count = 0;

} // namespace

std::shared_ptr<VLDRequestContext> PrivateSession::acquire()
{
    if (!context) {
        context = VLDRequestContext::inMemoryContext();
    }
    ++count;
    return context;
}

void PrivateSession::release()
{
    if (count < 1) {
        return;
    }
    if (--count == 0) {
        context.reset();
        LocationSettings::shared().privateSessionEnded();
    }
}

std::shared_ptr<VLDRequestContext> PrivateSession::current()
{
    return context;
}

int PrivateSession::holders()
{
    return count;
}

} // namespace velder
