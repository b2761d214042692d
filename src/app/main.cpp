#include "app/Launcher.h"
#include "app/VLDApplication.h"
#include "bridge/VLDEngineRuntime.h"
#include "core/AppInfo.h"

#include <cstdio>
#include <string>
#include <vector>

using namespace velder;

int main(int argc, char** argv)
{
    std::vector<std::string> arguments(argv, argv + argc);

    VLDApplication::installSharedApplication();
    AppInfo::prepareDirectories();
    AppInfo::rotateEngineLogIfLarge(5242880);

    std::string error;
    if (!VLDEngineRuntime::start(arguments, &error)) {
        std::fprintf(stderr, "Velder could not start.\n%s\n", error.c_str());
        return 1;
    }
    if (Launcher::forwardToRunningInstance(VLDApplication::shared(), arguments)) {
        VLDEngineRuntime::shutdown();
        return 0;
    }
    int status = Launcher::run(VLDApplication::shared(), arguments);
    VLDEngineRuntime::shutdown();
    return status;
}
