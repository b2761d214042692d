#include "bridge/VLDEngineRuntime.h"

#include "bridge/VLDIconFetch.h"
#include "bridge/VLDRequestContextImpl.h"
#include "bridge/VLDSchemeHandler.h"
#include "core/AppInfo.h"
#include "core/Format.h"
#include "core/Log.h"

#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <gtk/gtk.h>
#include <thread>
#include <unistd.h>
#include <webkit/webkit.h>

namespace velder {

namespace {

bool started = false;
// The standard error the program was started with, kept for Velder's own lines while the engine log
// stands in its place; -1 when it wasn't moved.
int originalStandardError = -1;

constexpr std::string_view portSwitch = "--remote-debugging-port=";
constexpr const char* velderLogDomain = "Velder";

// GLib messages of the engine and the toolkit: warnings and worse go to the log (standard error, which is
// the engine log now); chatter below that is dropped, except Velder's own.
GLogWriterOutput writeEngineLog(GLogLevelFlags level, const GLogField* fields, gsize count, gpointer)
{
    const char* domain = nullptr;
    for (gsize i = 0; i < count; ++i) {
        if (std::strcmp(fields[i].key, "GLIB_DOMAIN") == 0) {
            domain = static_cast<const char*>(fields[i].value);
            break;
        }
    }
    bool ours = domain && std::strcmp(domain, velderLogDomain) == 0;
    if (!ours && (level & (G_LOG_LEVEL_MESSAGE | G_LOG_LEVEL_INFO | G_LOG_LEVEL_DEBUG))) {
        return G_LOG_WRITER_HANDLED;
    }
    return g_log_writer_standard_streams(level, fields, count, nullptr);
}

// Before the first engine object: the engine's web and network processes inherit descriptor 2.
void openEngineLog()
{
    static bool writerInstalled = false;
    if (!writerInstalled) {
        // GLib allows one writer per process.
        g_log_set_writer_func(writeEngineLog, nullptr, nullptr);
        writerInstalled = true;
    }
    std::string path = AppInfo::engineLogFile();
    int log = open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (log < 0) {
        velder::log(format("Velder: the engine log %s could not be opened (%s); the engine writes to standard error.",
            path.c_str(), std::strerror(errno)));
        return;
    }
    originalStandardError = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    if (originalStandardError >= 0) {
        setLogDescriptor(originalStandardError);
        std::fflush(stderr);
        dup2(log, STDERR_FILENO);
    }
    close(log);
}

void closeEngineLog()
{
    if (originalStandardError < 0) {
        return;
    }
    std::fflush(stderr);
    dup2(originalStandardError, STDERR_FILENO);
    setLogDescriptor(STDERR_FILENO);
    close(originalStandardError);
    originalStandardError = -1;
}

std::optional<int> parsePort(std::string_view text)
{
    if (text.empty() || text.size() > 5) {
        return std::nullopt;
    }
    int value = 0;
    for (char c : text) {
        if (c < '0' || c > '9') {
            return std::nullopt;
        }
        value = value * 10 + (c - '0');
    }
    if (value < 1 || value > 65535) {
        return std::nullopt;
    }
    return value;
}

} // namespace

std::optional<int> VLDEngineRuntime::remoteDebuggingPort(const std::vector<std::string>& arguments)
{
    std::optional<int> port;
    for (const auto& argument : arguments) {
        if (!std::string_view(argument).starts_with(portSwitch)) {
            continue;
        }
        if (auto value = parsePort(std::string_view(argument).substr(portSwitch.size()))) {
            port = value;
        }
    }
    return port;
}

namespace {

bool software = false;

bool hasGpuRenderNode()
{
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/dri", error)) {
        if (entry.path().filename().string().starts_with("renderD")) {
            return true;
        }
    }
    return false;
}

} // namespace

bool VLDEngineRuntime::chooseSoftwareRendering(bool hasRenderNode, const char* gskRenderer)
{
    if (gskRenderer && *gskRenderer) {
        return std::string_view(gskRenderer) == "cairo";
    }
    return !hasRenderNode;
}

bool VLDEngineRuntime::softwareRendering()
{
    return software;
}

bool VLDEngineRuntime::start(const std::vector<std::string>& arguments, std::string* error)
{
    if (started) {
        return true;
    }
    software = chooseSoftwareRendering(hasGpuRenderNode(), g_getenv("GSK_RENDERER"));
    if (software && !g_getenv("GSK_RENDERER")) {
        g_setenv("GSK_RENDERER", "cairo", TRUE); // read by GTK when it opens the display
    }
    if (!gtk_init_check()) {
        if (error) {
            *error = "Cannot open a display.";
        }
        return false;
    }
    AppInfo::prepareDirectories();
    openEngineLog();
    if (auto port = remoteDebuggingPort(arguments)) {
        // Read by the engine when it makes its first view: loopback only.
        g_setenv("WEBKIT_INSPECTOR_HTTP_SERVER", format("127.0.0.1:%d", *port).c_str(), TRUE);
    }
    WebKitWebContext* context = webkit_web_context_get_default();
    webkit_web_context_set_cache_model(context, WEBKIT_CACHE_MODEL_WEB_BROWSER);
    VLDSchemeHandler::registerScheme();
    VLDRequestContextImpl::startGlobalContext(AppInfo::engineDirectory(), AppInfo::engineCacheDirectory());
    started = true;
    return true;
}

void VLDEngineRuntime::shutdown()
{
    if (!started) {
        return;
    }
    started = false;
    VLDIconFetch::cancelAll();
    VLDRequestContextImpl::stopGlobalContext();
    // Let the engine's last messages go out; a bounded number of turns, so that work which keeps coming
    // back can't hold the end. (A quitting Velder has drained its loop already: see QuitDrain.)
    for (int pass = 0; pass < 5; ++pass) {
        for (int turn = 0; turn < 100 && g_main_context_iteration(nullptr, FALSE); ++turn) { }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    closeEngineLog();
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
