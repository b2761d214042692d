#include "app/VLDApplication.h"

#include "core/AppInfo.h"

namespace velder {

namespace {

GtkApplication* application = nullptr;

} // namespace

void VLDApplication::installSharedApplication()
{
    if (!application) {
        application = gtk_application_new(AppInfo::instanceId().c_str(), G_APPLICATION_HANDLES_OPEN);
    }
}

GtkApplication* VLDApplication::shared()
{
    return application;
}

} // namespace velder
