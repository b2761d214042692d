#include "app/Launcher.h"
#include "app/VLDApplication.h"
#include "bridge/VLDEngineRuntime.h"
#include "core/AppInfo.h"
#include "core/LaunchRequest.h"

#include <cstdio>
#include <string>
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
    return status;
}
