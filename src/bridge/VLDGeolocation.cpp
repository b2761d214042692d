#include "bridge/VLDGeolocation.h"

#include "bridge/VLDMainThread.h"

#include <webkit/webkit.h>

namespace velder::VLDGeolocation {

namespace {

struct Road {
    std::shared_ptr<VLDPositionSource> source;
    // Counts the starts, so that a position or a failure that arrives after its stop goes nowhere.
    std::uint64_t generation = 0;
    bool running = false;
    bool connected = false;
};

Road& road()
{
    static Road instance;
    return instance;
}

// Whether an answer of the start numbered `generation` may still reach the engine.
bool isCurrent(std::uint64_t generation)
{
    return road().running && road().generation == generation;
}

// The engine no longer watches (or the source is replaced): the source stops, and late answers go nowhere.
void stopRunning()
{
    Road& current = road();
    if (!current.running) {
        return;
    }
    current.running = false;
    ++current.generation;
    if (current.source) {
        current.source->stop();
    }
}

void deliver(WebKitGeolocationManager* manager, std::uint64_t generation, const VLDPosition& position)
{
    if (!isCurrent(generation)) {
        return;
    }
    WebKitGeolocationPosition* engine
        = webkit_geolocation_position_new(position.latitude, position.longitude, position.accuracy);
    if (position.timestamp) {
        webkit_geolocation_position_set_timestamp(engine, position.timestamp);
    }
    if (position.altitude) {
        webkit_geolocation_position_set_altitude(engine, *position.altitude);
    }
    if (position.heading) {
        webkit_geolocation_position_set_heading(engine, *position.heading);
    }
    if (position.speed) {
        webkit_geolocation_position_set_speed(engine, *position.speed);
    }
    webkit_geolocation_manager_update_position(manager, engine);
    webkit_geolocation_position_free(engine);
}

gboolean onStart(WebKitGeolocationManager* manager, gpointer)
{
    Road& current = road();
    if (!current.source) {
        return FALSE; // the engine's own road
    }
    current.running = true;
    std::uint64_t generation = ++current.generation;
    // Both answers take a turn of the loop: the engine is still inside its start when a source answers at once.
    current.source->start(
        webkit_geolocation_manager_get_enable_high_accuracy(manager),
        [manager, generation](const VLDPosition& position) {
            VLDPostToMainThread([manager, generation, position] { deliver(manager, generation, position); });
        },
        [manager, generation](const std::string& message) {
            VLDPostToMainThread([manager, generation, message] {
                if (isCurrent(generation)) {
                    webkit_geolocation_manager_failed(manager, message.c_str());
                }
            });
        });
    return TRUE;
}

void onStop(WebKitGeolocationManager*, gpointer)
{
    stopRunning();
}

} // namespace

void setPositionSource(std::shared_ptr<VLDPositionSource> source)
{
    stopRunning();
    Road& current = road();
    current.source = std::move(source);
    if (!current.connected) {
        // The manager lives as long as the default context, which is the program's.
        WebKitGeolocationManager* manager
            = webkit_web_context_get_geolocation_manager(webkit_web_context_get_default());
        g_signal_connect(manager, "start", G_CALLBACK(onStart), nullptr);
        g_signal_connect(manager, "stop", G_CALLBACK(onStop), nullptr);
        current.connected = true;
    }
}

} // namespace velder::VLDGeolocation
