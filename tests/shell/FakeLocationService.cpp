#include "FakeLocationService.h"

#include "support/MainLoop.h"

#include <gtest/gtest.h>
#include <libgeoclue-2.0/geoclue.h>

namespace velder::test {

namespace {

constexpr const char* managerPath = "/org/freedesktop/GeoClue2/Manager";

const std::string& privateBusAddress()
{
    static PrivateBus bus;
    return bus.address();
}

} // namespace

FakeLocationService::FakeLocationService(double latitude, double longitude)
    : m_latitude(latitude)
    , m_longitude(longitude)
{
    // One bus for the process: GDBus keeps its first system bus connection for good.
    const std::string& address = privateBusAddress();
    if (address.empty()) {
        ADD_FAILURE() << "no private bus";
        return;
    }
    g_setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), TRUE);
    GError* error = nullptr;
    m_connection = GObjectPtr<GDBusConnection>::adopt(g_dbus_connection_new_for_address_sync(address.c_str(),
        GDBusConnectionFlags(
            G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, &error));
    if (!m_connection) {
        ADD_FAILURE() << "no connection to the private bus: " << (error ? error->message : "");
        g_clear_error(&error);
        return;
    }
    GClueManager* manager = gclue_manager_skeleton_new();
    m_manager = GObjectPtr<GObject>::adopt(G_OBJECT(manager));
    gclue_manager_set_available_accuracy_level(manager, GCLUE_ACCURACY_LEVEL_EXACT);
    g_signal_connect(manager, "handle-get-client", G_CALLBACK(onGetClient), this);
    g_signal_connect(manager, "handle-create-client", G_CALLBACK(onGetClient), this);
    g_dbus_interface_skeleton_export(G_DBUS_INTERFACE_SKELETON(manager), m_connection.get(), managerPath, nullptr);
    ownName();
}

void FakeLocationService::ownName()
{
    m_nameId = g_bus_own_name_on_connection(
        m_connection.get(), "org.freedesktop.GeoClue2", G_BUS_NAME_OWNER_FLAGS_NONE,
        +[](GDBusConnection*, const char*, gpointer self) {
            static_cast<FakeLocationService*>(self)->m_ownsName = true;
        },
        nullptr, this, nullptr);
    runMainLoopUntil([this] { return m_ownsName; });
}

void FakeLocationService::setPresent(bool present)
{
    if (present && !m_nameId) {
        ownName();
    } else if (!present && m_nameId) {
        g_bus_unown_name(std::exchange(m_nameId, 0));
        m_ownsName = false;
    }
}

FakeLocationService::~FakeLocationService()
{
    if (m_nameId) {
        g_bus_unown_name(m_nameId);
    }
    for (auto* list : { &m_locations, &m_clients }) {
        for (auto& object : *list) {
            g_dbus_interface_skeleton_unexport(G_DBUS_INTERFACE_SKELETON(object.get()));
        }
    }
    if (m_manager) {
        g_dbus_interface_skeleton_unexport(G_DBUS_INTERFACE_SKELETON(m_manager.get()));
    }
    if (m_connection) {
        g_dbus_connection_close_sync(m_connection.get(), nullptr, nullptr);
    }
}

gboolean FakeLocationService::onGetClient(GObject* manager, GDBusMethodInvocation* invocation, gpointer data)
{
    auto* self = static_cast<FakeLocationService*>(data);
    std::string path = "/org/freedesktop/GeoClue2/Client/" + std::to_string(self->m_clients.size() + 1);
    GClueClient* client = gclue_client_skeleton_new();
    g_signal_connect(client, "handle-start", G_CALLBACK(onStart), self);
    g_signal_connect(client, "handle-stop", G_CALLBACK(onStop), self);
    g_dbus_interface_skeleton_export(
        G_DBUS_INTERFACE_SKELETON(client), self->m_connection.get(), path.c_str(), nullptr);
    self->m_clients.push_back(GObjectPtr<GObject>::adopt(G_OBJECT(client)));
    gclue_manager_complete_get_client(GCLUE_MANAGER(manager), invocation, path.c_str());
    return TRUE;
}

gboolean FakeLocationService::onStart(GObject* object, GDBusMethodInvocation* invocation, gpointer data)
{
    auto* self = static_cast<FakeLocationService*>(data);
    GClueClient* client = GCLUE_CLIENT(object);
    if (self->m_refusing) {
        g_dbus_method_invocation_return_dbus_error(
            invocation, "org.freedesktop.DBus.Error.AccessDenied", "The user refused location access");
        return TRUE;
    }
    std::string path = "/org/freedesktop/GeoClue2/Location/" + std::to_string(self->m_locations.size() + 1);
    GClueLocation* location = gclue_location_skeleton_new();
    gclue_location_set_latitude(location, self->m_latitude);
    gclue_location_set_longitude(location, self->m_longitude);
    gclue_location_set_accuracy(location, 25);
    gclue_location_set_altitude(location, -G_MAXDOUBLE);
    gclue_location_set_speed(location, -1);
    gclue_location_set_heading(location, -1);
    g_dbus_interface_skeleton_export(
        G_DBUS_INTERFACE_SKELETON(location), self->m_connection.get(), path.c_str(), nullptr);
    self->m_locations.push_back(GObjectPtr<GObject>::adopt(G_OBJECT(location)));
    gclue_client_set_active(client, TRUE);
    gclue_client_complete_start(client, invocation);
    std::string old = gclue_client_get_location(client) ? gclue_client_get_location(client) : "/";
    gclue_client_set_location(client, path.c_str());
    gclue_client_emit_location_updated(client, old.c_str(), path.c_str());
    return TRUE;
}

gboolean FakeLocationService::onStop(GObject* object, GDBusMethodInvocation* invocation, gpointer)
{
    gclue_client_set_active(GCLUE_CLIENT(object), FALSE);
    gclue_client_complete_stop(GCLUE_CLIENT(object), invocation);
    return TRUE;
}

void FakeLocationService::withdraw()
{
    for (auto& client : m_clients) {
        gclue_client_set_active(GCLUE_CLIENT(client.get()), FALSE);
    }
}

} // namespace velder::test
