#include "app/AppDelegate.h"

#include "core/Vault.h"

#include <csignal>
#include <glib-unix.h>

namespace velder {

namespace {

gboolean quitOnSignal(gpointer data)
{
    g_application_quit(G_APPLICATION(data));
    return G_SOURCE_CONTINUE;
}

void onActivate(GtkApplication* application, gpointer)
{
    GtkWidget* window = gtk_application_window_new(application);
    gtk_window_set_title(GTK_WINDOW(window), "Velder");
    gtk_window_set_default_size(GTK_WINDOW(window), 1200, 780);
    gtk_window_present(GTK_WINDOW(window));
}

void onShutdown(GApplication*, gpointer)
{
    AppDelegate::applicationWillTerminate();
}

} // namespace

int AppDelegate::run(GtkApplication* application, const std::vector<std::string>& arguments)
{
    (void)arguments;
    for (int signal : { SIGTERM, SIGINT, SIGHUP }) {
        g_unix_signal_add(signal, quitOnSignal, application);
    }
    g_signal_connect(application, "activate", G_CALLBACK(onActivate), nullptr);
    g_signal_connect(application, "shutdown", G_CALLBACK(onShutdown), nullptr);
    char* noArguments[] = { nullptr };
    return g_application_run(G_APPLICATION(application), 0, noArguments);
}

void AppDelegate::applicationWillTerminate()
{
    Vault::shared().flushNow();
}

} // namespace velder
