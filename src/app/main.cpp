#include "app/Launcher.h"
#include "app/VLDApplication.h"
#include "bridge/VLDEngineRuntime.h"
#include "core/AppInfo.h"
#include "core/LaunchRequest.h"
#include "core/Log.h"

#include <cstdio>
#include <gio/gio.h>
#include <string>
#include <unistd.h>
#include <vector>

using namespace velder;

int main(int argc, char** argv)
{
    std::vector<std::string> arguments(argv, argv + argc);
    LaunchRequest request = LaunchRequest::parse(arguments);

    // A second launch of a running profile hands over before it touches a file or starts the engine.
    switch (Launcher::handOver(request)) {
    case Launcher::Handover::done:
        return 0;
    case Launcher::Handover::unanswered:
        return 1;
    case Launcher::Handover::none:
        break;
    }

    VLDApplication::installSharedApplication();
    AppInfo::prepareDirectories();
    AppInfo::rotateEngineLogIfLarge(5242880);

    std::string error;
    if (!VLDEngineRuntime::start(arguments, &error)) {
        std::fprintf(stderr, "Velder could not start.\n%s\n", error.c_str());
        return 1;
    }
    int status = Launcher::run(VLDApplication::shared(), request);
    VLDEngineRuntime::shutdown();
    if (auto program = Launcher::programToRelaunch()) {
        // An update took this installation's place: its program follows in this process, with the same
        // environment and so the same profile. The bus name goes with the connection, so the new program
        // doesn't take itself for a second launch.
        if (GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr)) {
            g_dbus_connection_close_sync(bus, nullptr, nullptr);
            g_object_unref(bus);
        }
        execl(program->c_str(), program->c_str(), static_cast<char*>(nullptr));
        log("Velder: could not start " + *program + " after the update");
        return 1;
    }
    return status;
}
