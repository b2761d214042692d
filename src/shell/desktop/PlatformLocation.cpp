#include "shell/desktop/PlatformLocation.h"

#include "core/AppInfo.h"
#include "core/Format.h"
#include "core/Log.h"

#include <gio/gio.h>
#include <libgeoclue-2.0/geoclue.h>

namespace velder {

namespace {

PlatformLocation::Status currentStatus = PlatformLocation::undetermined;
bool asking = false;
bool notedMirroredAllow = false;

const char* deniedMessage = "Velder: GeoClue location access is DENIED or UNAVAILABLE for Velder. WebKit will not "
                            "resolve a position until it is granted in the desktop's privacy settings.";
const char* grantedMessage = "Velder: GeoClue location access is GRANTED; WebKit resolves positions from here. If a "
                             "page still reports a location failure, the fault is RESOLUTION rather than access -- "
                             "check that the geoclue service can locate this machine.";
const char* undeterminedMessage = "Velder: a site holds a stored location grant while Velder's own GeoClue "
                                  "authorization is UNDETERMINED. WebKit will answer the site and resolve nothing.";

void setStatus(PlatformLocation::Status status)
{
    currentStatus = status;
    log(format("Velder: GeoClue authorization is now %ld (0 undetermined, 1 unavailable, 2 denied, 3 granted).",
        static_cast<long>(status)));
}

void onSimpleReady(GObject*, GAsyncResult* result, gpointer)
{
    asking = false;
    GError* error = nullptr;
    GClueSimple* simple = gclue_simple_new_finish(result, &error);
    if (simple) {
        g_object_unref(simple);
        setStatus(PlatformLocation::granted);
        return;
    }
    log(std::string("Velder: GeoClue reported ") + (error ? error->message : "an unknown failure"));
    bool accessDenied = error && g_dbus_error_is_remote_error(error)
        && g_strcmp0(g_dbus_error_get_remote_error(error), "org.freedesktop.DBus.Error.AccessDenied") == 0;
    g_clear_error(&error);
    setStatus(accessDenied ? PlatformLocation::denied : PlatformLocation::unavailable);
}

} // namespace

void PlatformLocation::ensureAuthorization()
{
    if (currentStatus != undetermined) {
        log(currentStatus == granted ? grantedMessage : deniedMessage);
        return;
    }
    log("Velder: asking GeoClue for location authorization.");
    if (!asking) {
        asking = true;
        gclue_simple_new(AppInfo::applicationId, GCLUE_ACCURACY_LEVEL_EXACT, nullptr, onSimpleReady, nullptr);
    }
}

void PlatformLocation::noteAuthorizationForMirroredAllow()
{
    if (notedMirroredAllow) {
        return;
    }
    notedMirroredAllow = true;
    switch (currentStatus) {
    case undetermined:
        log(undeterminedMessage);
        break;
    case granted:
        log(grantedMessage);
        break;
    case unavailable:
    case denied:
        log(deniedMessage);
        break;
    }
}

PlatformLocation::Status PlatformLocation::status()
{
    return currentStatus;
}

} // namespace velder
