#include "app/Launcher.h"

#include "app/ShellPageHost.h"
#include "bridge/VLDBrowserView.h"
#include "bridge/VLDInternalPages.h"
#include "core/InternalPages.h"
#include "core/LocationSettings.h"
#include "core/Log.h"
#include "shell/desktop/PlatformLocation.h"
#include "shell/tab/EngineLocationMirror.h"
#include "shell/window/AppDelegate.h"
#include "shell/window/MainWindow.h"
#include "shell/window/WindowRegistry.h"

#include <csignal>
#include <glib-unix.h>
#include <memory>

namespace velder {

namespace {

struct Running {
    std::vector<std::string> arguments;
    std::unique_ptr<AppDelegate> delegate;
    bool launched = false;
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

void applicationDidFinishLaunching(GtkApplication*)
{
    Running& state = running();
    state.launched = true;
    Launcher::wireServices();
    log("Velder: no update channel \xe2\x80\x94 This build has no update channel.");
    state.delegate->applicationDidFinishLaunching(state.arguments);
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
}

bool Launcher::forwardToRunningInstance(GtkApplication* application, const std::vector<std::string>& arguments)
{
    GError* error = nullptr;
    if (!g_application_register(G_APPLICATION(application), nullptr, &error)) {
        // Without a session bus there's nobody to hand over to: run here.
        g_clear_error(&error);
        return false;
    }
    if (!g_application_get_is_remote(G_APPLICATION(application))) {
        return false;
    }
    std::optional<std::string> url;
    bool privateWindow = false;
    bool newWindow = false;
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        if (arguments[i] == "--new-window") {
            newWindow = true;
        } else if (arguments[i] == "--private-window") {
            privateWindow = true;
        } else if (!arguments[i].starts_with("-") && !url) {
            url = arguments[i];
        }
    }
    if (url) {
        g_action_group_activate_action(G_ACTION_GROUP(application), "open-url", g_variant_new_string(url->c_str()));
    } else if (privateWindow) {
        g_action_group_activate_action(G_ACTION_GROUP(application), "new-private-window", nullptr);
    } else if (newWindow) {
        g_action_group_activate_action(G_ACTION_GROUP(application), "new-window", nullptr);
    } else {
        g_application_activate(G_APPLICATION(application));
    }
    g_application_quit(G_APPLICATION(application));
    return true;
}

int Launcher::run(GtkApplication* application, const std::vector<std::string>& arguments)
{
    Running& state = running();
    state.arguments = arguments;
    state.delegate = std::make_unique<AppDelegate>();
    for (int signal : { SIGTERM, SIGINT, SIGHUP }) {
        g_unix_signal_add(signal, quitOnSignal, application);
    }
    g_signal_connect(application, "activate", G_CALLBACK(onActivate), nullptr);
    g_signal_connect(application, "shutdown", G_CALLBACK(onShutdown), nullptr);
    addAction(
        application, "open-url", G_VARIANT_TYPE_STRING, G_CALLBACK(+[](GSimpleAction*, GVariant* parameter, gpointer) {
            if (AppDelegate* delegate = AppDelegate::shared()) {
                delegate->openURLFromOutside(g_variant_get_string(parameter, nullptr));
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
    char* noArguments[] = { nullptr };
    return g_application_run(G_APPLICATION(application), 0, noArguments);
}

} // namespace velder
