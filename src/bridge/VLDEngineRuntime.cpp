#include "bridge/VLDEngineRuntime.h"

#include "core/Format.h"

#include <gtk/gtk.h>
#include <webkit/webkit.h>

namespace velder {

namespace {

bool started = false;

} // namespace

bool VLDEngineRuntime::start(const std::vector<std::string>&, std::string* error)
{
    if (started) {
        return true;
    }
    if (!gtk_init_check()) {
        if (error) {
            *error = "Cannot open a display.";
        }
        return false;
    }
    started = true;
    return true;
}

void VLDEngineRuntime::shutdown()
{
    if (!started) {
        return;
    }
    started = false;
}

bool VLDEngineRuntime::isStarted()
{
    return started;
}

std::string VLDEngineRuntime::engineVersion()
{
    return format("%u.%u.%u", webkit_get_major_version(), webkit_get_minor_version(), webkit_get_micro_version());
}

std::string VLDEngineRuntime::toolkitVersion()
{
    return format("%u.%u.%u", gtk_get_major_version(), gtk_get_minor_version(), gtk_get_micro_version());
}

} // namespace velder
