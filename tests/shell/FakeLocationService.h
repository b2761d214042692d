#pragma once

#include "glib/GObjectPtr.h"
#include "support/ChildProcess.h"

#include <gio/gio.h>
#include <memory>
#include <string>
#include <vector>

namespace velder::test {

// A stand-in for the desktop's location service: GeoClue's manager, clients and locations on a private
// message bus that this process takes for its system bus (DBUS_SYSTEM_BUS_ADDRESS, read by GDBus at the
// first connection, so it must exist before anything asks for the system bus). The bus lasts as long as
// the process; each service owns the name while it lives.
class FakeLocationService {
public:
    FakeLocationService(double latitude, double longitude);
    ~FakeLocationService();
    FakeLocationService(const FakeLocationService&) = delete;
    FakeLocationService& operator=(const FakeLocationService&) = delete;

    bool isReady() const { return m_connection.get() && m_ownsName; }
    // Without its name on the bus the service is missing, as on a desktop without GeoClue.
    void setPresent(bool present);
    // A refusing service answers Start as a desktop whose user said no.
    void setRefusing(bool refusing) { m_refusing = refusing; }
    // The desktop takes the permission back: every running client stops.
    void withdraw();

private:
    void ownName();
    static gboolean onGetClient(GObject* manager, GDBusMethodInvocation* invocation, gpointer self);
    static gboolean onStart(GObject* client, GDBusMethodInvocation* invocation, gpointer self);
    static gboolean onStop(GObject* client, GDBusMethodInvocation* invocation, gpointer self);

    GObjectPtr<GDBusConnection> m_connection;
    GObjectPtr<GObject> m_manager;
    std::vector<GObjectPtr<GObject>> m_clients;
    std::vector<GObjectPtr<GObject>> m_locations;
    double m_latitude;
    double m_longitude;
    bool m_refusing = false;
    bool m_ownsName = false;
    unsigned m_nameId = 0;
};

} // namespace velder::test
