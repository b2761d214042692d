#include "app/Launcher.h"

#include "app/ShellPageHost.h"
#include "bridge/VLDBrowserView.h"
#include "bridge/VLDGeolocation.h"
#include "bridge/VLDInternalPages.h"
#include "core/AppInfo.h"
#include "core/BuildInfo.h"
#include "core/InternalPages.h"
#include "core/LocationSettings.h"
#include "core/Log.h"
#include "core/QuitDrain.h"
#include "core/UpdateController.h"
#include "shell/desktop/PlatformLocation.h"
#include "shell/desktop/UpdateAlertDialogs.h"
#include "shell/tab/EngineLocationMirror.h"
#include "shell/window/AppDelegate.h"
#include "shell/window/MainWindow.h"
#include "shell/window/WindowRegistry.h"
#include "update/VelderUpdater.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <glib-unix.h>
#include <memory>
#include <thread>

namespace velder {

namespace {

// How long a second launch waits for the running Velder to take its request.
constexpr std::chrono::milliseconds handOverTimeout(10000);

struct Running {
    LaunchRequest request;
    std::unique_ptr<AppDelegate> delegate;
    bool launched = false;
    std::optional<std::string> relaunch; // the program an installed update put in place
};

Running& running()
{
    static Running state;
    return state;
}

void addAction(GtkApplication* application, const char* name, const GVariantType* parameter, GCallback callback)
{
    GSimpleAction* action = g_simple_action_new(name, parameter);
    g_signal_connect(action, "activate", callback, application);
    g_action_map_add_action(G_ACTION_MAP(application), G_ACTION(action));
    g_object_unref(action);
}

// The updater's backend and alerts, for the controller that the delegate starts. An installed update
// quits Velder through the normal quit path, and main() starts the new program once this one is done.
void wireUpdater()
{
    UpdateController& updates = UpdateController::shared();
    updates.setAlerts(std::make_shared<UpdateAlertDialogs>());
    updates.setBackend([](UpdateController& controller, UpdateUserDriver& driver) {
        return std::make_unique<VelderUpdater>(
            controller, driver, BuildInfo::installed().value_or(BuildInfo {}), [](const std::string& program) {
                running().relaunch = program;
                if (GApplication* application = g_application_get_default()) {
                    g_application_quit(application);
                }
            });
    });
}

void applicationDidFinishLaunching(GtkApplication*)
{
    Running& state = running();
    state.launched = true;
    Launcher::wireServices();
    wireUpdater();
    state.delegate->applicationDidFinishLaunching(state.request);
    VLDBrowserView::releaseUnclaimedWebProcess();
}

void onActivate(GtkApplication* application, gpointer)
{
    if (!running().launched) {
        applicationDidFinishLaunching(application);
        return;
    }
    // Launched again while running, with nothing to open: a window at the home page if none is open.
    if (WindowRegistry::shared().windows.empty()) {
        running().delegate->reopenWindow(false);
    } else if (MainWindow* window = AppDelegate::keyWindow()) {
        window->makeKeyAndOrderFront();
    }
}

void onShutdown(GApplication*, gpointer)
{
    Running& state = running();
    if (state.launched && state.delegate) {
        state.delegate->applicationWillTerminate();
    }
    WindowRegistry::shared().windows.clear();
    state.delegate.reset();
}

gboolean quitOnSignal(gpointer data)
{
    g_application_quit(G_APPLICATION(data));
    return G_SOURCE_CONTINUE;
}

} // namespace

void Launcher::wireServices()
{
    static bool wired = false;
    if (wired) {
        return;
    }
    wired = true;
    static auto pageHost = std::make_shared<ShellPageHost>();
    InternalPages::shared().setHost(pageHost);
    bool registered = VLDInternalPages::registerSource([](const std::string& url, VLDBrowserView* view) {
        return InternalPages::shared().response(url, view ? std::optional(view->identifier()) : std::nullopt);
    });
    if (!registered) {
        log("Velder: could not register the velder:// scheme handler. Dashboard, About, Settings and History will "
            "not load.");
    }
    LocationSettings::shared().setMirror(std::make_shared<EngineLocationMirror>());
    LocationSettings::shared().onMirroredAllow = [] { PlatformLocation::noteAuthorizationForMirroredAllow(); };
    VLDGeolocation::setPositionSource(PlatformLocation::positionSource());
}

Launcher::Handover Launcher::handOver(const LaunchRequest& request)
{
    GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    if (!bus) {
        return Handover::none;
    }
    std::string name = AppInfo::instanceId();
    GVariant* owned = g_dbus_connection_call_sync(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus",
        "org.freedesktop.DBus", "NameHasOwner", g_variant_new("(s)", name.c_str()), G_VARIANT_TYPE("(b)"),
        G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
    gboolean running = FALSE;
    if (owned) {
        g_variant_get(owned, "(b)", &running);
        g_variant_unref(owned);
    }
    if (!running) {
        g_object_unref(bus);
        return Handover::none;
    }
    // The running Velder's "open" action, called as GApplication's own remote actions are, but waited for.
    std::string path = "/" + name;
    std::replace(path.begin(), path.end(), '.', '/');
    GVariantBuilder urls;
    g_variant_builder_init(&urls, G_VARIANT_TYPE("as"));
    for (const auto& url : request.urls) {
        g_variant_builder_add(&urls, "s", url.c_str());
    }
    GVariant* parameter = g_variant_new("(asbb)", &urls, request.newWindow, request.privateWindow);
    GVariantBuilder parameters;
    g_variant_builder_init(&parameters, G_VARIANT_TYPE("av"));
    g_variant_builder_add(&parameters, "v", parameter);
    GError* error = nullptr;
    GVariant* reply = g_dbus_connection_call_sync(bus, name.c_str(), path.c_str(), "org.gtk.Actions", "Activate",
        g_variant_new("(sava{sv})", "open", &parameters, nullptr), nullptr, G_DBUS_CALL_FLAGS_NONE,
        static_cast<int>(handOverTimeout.count()), nullptr, &error);
    g_object_unref(bus);
    if (!reply) {
        log(std::string("Velder: the running Velder did not take the request (") + (error ? error->message : "")
            + "); nothing was opened.");
        g_clear_error(&error);
        return Handover::unanswered;
    }
    g_variant_unref(reply);
    return Handover::done;
}

int Launcher::run(GtkApplication* application, const LaunchRequest& request)
{
    Running& state = running();
    state.request = request;
    state.delegate = std::make_unique<AppDelegate>();
    for (int signal : { SIGTERM, SIGINT, SIGHUP }) {
        g_unix_signal_add(signal, quitOnSignal, application);
    }
    g_signal_connect(application, "activate", G_CALLBACK(onActivate), nullptr);
    g_signal_connect(application, "shutdown", G_CALLBACK(onShutdown), nullptr);
    addAction(
        application, "open", G_VARIANT_TYPE("(asbb)"), G_CALLBACK(+[](GSimpleAction*, GVariant* parameter, gpointer) {
            GVariantIter* urls = nullptr;
            gboolean newWindow = FALSE;
            gboolean privateWindow = FALSE;
            g_variant_get(parameter, "(asbb)", &urls, &newWindow, &privateWindow);
            std::vector<std::string> texts;
            const char* url = nullptr;
            while (g_variant_iter_next(urls, "&s", &url)) {
                texts.emplace_back(url);
            }
            g_variant_iter_free(urls);
            if (AppDelegate* delegate = AppDelegate::shared()) {
                delegate->openFromOutside(LaunchRequest::handedOver(texts, newWindow, privateWindow));
            }
        }));
    addAction(application, "new-window", nullptr, G_CALLBACK(+[](GSimpleAction*, GVariant*, gpointer) {
        if (AppDelegate* delegate = AppDelegate::shared()) {
            delegate->reopenWindow(false);
        }
    }));
    addAction(application, "new-private-window", nullptr, G_CALLBACK(+[](GSimpleAction*, GVariant*, gpointer) {
        if (AppDelegate* delegate = AppDelegate::shared()) {
            delegate->reopenWindow(true);
        }
    }));
    if (!request.privateWindow) {
        // The first page's process starts while the window is built.
        VLDBrowserView::startWebProcessEarly();
    }
    char* noArguments[] = { nullptr };
    int status = g_application_run(G_APPLICATION(application), 0, noArguments);
    drainAfterQuit();
    return status;
}

std::optional<std::string> Launcher::programToRelaunch()
{
    return running().relaunch;
}

void Launcher::drainAfterQuit()
{
    auto start = std::chrono::steady_clock::now();
    for (;;) {
        auto elapsed = std::chrono::steady_clock::now() - start;
        QuitDrain::Step step = QuitDrain::next(elapsed, g_main_context_pending(nullptr));
        if (step == QuitDrain::Step::stop) {
            return;
        }
        if (step == QuitDrain::Step::dispatch) {
            g_main_context_iteration(nullptr, FALSE);
        } else {
            std::this_thread::sleep_for(QuitDrain::idleWait);
        }
    }
}

} // namespace velder
