#include "shell/desktop/PlatformLocation.h"

#include "bridge/VLDPositionSource.h"
#include "core/AppInfo.h"
#include "core/Format.h"
#include "core/Log.h"
#include "glib/GObjectPtr.h"

#include <gio/gio.h>
#include <libgeoclue-2.0/geoclue.h>
#include <optional>

namespace velder {

namespace {

const char* deniedMessage = "Velder: GeoClue location access is DENIED or UNAVAILABLE for Velder. WebKit will not "
                            "resolve a position until it is granted in the desktop's privacy settings.";
const char* grantedMessage = "Velder: GeoClue location access is GRANTED; WebKit resolves positions from here. If a "
                             "page still reports a location failure, the fault is RESOLUTION rather than access -- "
                             "check that the geoclue service can locate this machine.";
const char* undeterminedMessage = "Velder: a site holds a stored location grant while Velder's own GeoClue "
                                  "authorization is UNDETERMINED. WebKit will answer the site and resolve nothing.";

struct Watch {
    VLDPositionSource::Update update;
    VLDPositionSource::Failure failure;
};

// The one conversation with GeoClue: an attempt to start a client, the client while it runs, and the page
// road watching it.
struct Service {
    PlatformLocation::Status status = PlatformLocation::undetermined;
    bool asking = false;
    GObjectPtr<GClueSimple> simple;
    std::optional<Watch> watch;
    bool notedMirroredAllow = false;
};

Service& service()
{
    static Service instance;
    return instance;
}

void setStatus(PlatformLocation::Status status)
{
    if (std::exchange(service().status, status) != status) {
        log(format("Velder: GeoClue authorization is now %ld (0 undetermined, 1 unavailable, 2 denied, 3 granted).",
            static_cast<long>(status)));
    }
}

void dropClient()
{
    Service& current = service();
    if (GClueSimple* simple = current.simple.get()) {
        g_signal_handlers_disconnect_by_data(simple, &current);
        if (GClueClient* client = gclue_simple_get_client(simple)) {
            g_signal_handlers_disconnect_by_data(client, &current);
        }
        current.simple.reset(); // the client stops with its last reference
    }
}

void deliverPosition()
{
    Service& current = service();
    GClueLocation* location = current.simple ? gclue_simple_get_location(current.simple.get()) : nullptr;
    if (!location || !current.watch) {
        return;
    }
    VLDPosition position;
    position.latitude = gclue_location_get_latitude(location);
    position.longitude = gclue_location_get_longitude(location);
    position.accuracy = gclue_location_get_accuracy(location);
    // GeoClue's "unknown": the lowest double for the altitude, a negative speed or heading.
    if (double altitude = gclue_location_get_altitude(location); altitude > -G_MAXDOUBLE) {
        position.altitude = altitude;
    }
    if (double speed = gclue_location_get_speed(location); speed >= 0) {
        position.speed = speed;
    }
    if (double heading = gclue_location_get_heading(location); heading >= 0) {
        position.heading = heading;
    }
    if (GVariant* stamp = gclue_location_get_timestamp(location)) {
        guint64 seconds = 0;
        guint64 microseconds = 0;
        g_variant_get(stamp, "(tt)", &seconds, &microseconds);
        position.timestamp = seconds;
    }
    current.watch->update(position);
}

void fail(const std::string& message)
{
    if (auto& watch = service().watch) {
        watch->failure(message);
    }
}

// The desktop took the permission back while the client ran: GeoClue stopped it.
void onActiveChanged(GClueClient* client, GParamSpec*, gpointer)
{
    if (gclue_client_get_active(client)) {
        return;
    }
    log("Velder: GeoClue stopped Velder's location client; the desktop withdrew the permission.");
    dropClient();
    setStatus(PlatformLocation::denied);
    fail("The desktop's location service withdrew access.");
}

void keepClient(GClueSimple* simple)
{
    Service& current = service();
    current.simple = GObjectPtr<GClueSimple>::adopt(simple);
    g_signal_connect_swapped(simple, "notify::location", G_CALLBACK(+[](gpointer) { deliverPosition(); }), &current);
    if (GClueClient* client = gclue_simple_get_client(simple)) {
        g_signal_connect(client, "notify::active", G_CALLBACK(onActiveChanged), &current);
    }
    deliverPosition();
}

void onSimpleReady(GObject*, GAsyncResult* result, gpointer)
{
    GError* error = nullptr;
    GClueSimple* simple = gclue_simple_new_finish(result, &error);
    Service& current = service();
    current.asking = false;
    if (simple) {
        setStatus(PlatformLocation::granted);
        if (current.watch) {
            keepClient(simple);
        } else {
            g_object_unref(simple); // only the permission was asked for: nothing keeps locating
        }
        return;
    }
    std::string message = error ? error->message : "an unknown failure";
    log("Velder: GeoClue reported " + message);
    bool accessDenied = error && g_dbus_error_is_remote_error(error)
        && g_strcmp0(g_dbus_error_get_remote_error(error), "org.freedesktop.DBus.Error.AccessDenied") == 0;
    g_clear_error(&error);
    setStatus(accessDenied ? PlatformLocation::denied : PlatformLocation::unavailable);
    // What the page hears names no detail of the machine; the log has them.
    fail(accessDenied ? "The desktop's location service refused access." : "No location service is available.");
}

void beginAttempt(bool highAccuracy)
{
    Service& current = service();
    if (current.asking || current.simple) {
        return;
    }
    current.asking = true;
    gclue_simple_new(AppInfo::applicationId, highAccuracy ? GCLUE_ACCURACY_LEVEL_EXACT : GCLUE_ACCURACY_LEVEL_STREET,
        nullptr, onSimpleReady, nullptr);
}

class GeoClueSource final : public VLDPositionSource {
public:
    void start(bool highAccuracy, Update update, Failure failure) override
    {
        Service& current = service();
        current.watch = Watch { std::move(update), std::move(failure) };
        if (current.simple) {
            deliverPosition();
        } else {
            beginAttempt(highAccuracy);
        }
    }

    void stop() override
    {
        service().watch.reset();
        dropClient();
    }
};

} // namespace

void PlatformLocation::ensureAuthorization()
{
    Service& current = service();
    switch (current.status) {
    case undetermined:
        log("Velder: asking GeoClue for location authorization.");
        break;
    case granted:
        log(grantedMessage);
        return;
    case unavailable:
    case denied:
        // Asked again: the desktop may have granted it since, and GeoClue's agent remembers a refusal.
        log(deniedMessage);
        break;
    }
    beginAttempt(true);
}

void PlatformLocation::noteAuthorizationForMirroredAllow()
{
    Service& current = service();
    if (std::exchange(current.notedMirroredAllow, true)) {
        return;
    }
    switch (current.status) {
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
    return service().status;
}

std::shared_ptr<VLDPositionSource> PlatformLocation::positionSource()
{
    return std::make_shared<GeoClueSource>();
}

} // namespace velder
