// The floor Velder is measured against: one GTK 4 window holding one WebKitGTK 6.0 view per address on the
// command line (only the first is shown), drawn the way Velder draws on this machine: on the CPU, without
// accelerated compositing, when there is no GPU render node. Nothing else: no chrome, no stores, no pages of
// its own. Built and run by bench/compare-browsers.sh.
#include <gtk/gtk.h>
#include <stdlib.h>
#include <string.h>
#include <webkit/webkit.h>

static gboolean has_render_node(void)
{
    GDir* dir = g_dir_open("/dev/dri", 0, NULL);
    gboolean found = FALSE;
    for (const char* name; dir && (name = g_dir_read_name(dir));) {
        found |= g_str_has_prefix(name, "renderD");
    }
    if (dir) {
        g_dir_close(dir);
    }
    return found;
}

static void closed(GtkWindow* window, gpointer loop)
{
    (void)window;
    g_main_loop_quit(loop);
}

int main(int argc, char** argv)
{
    gboolean software = !has_render_node();
    if (software && !getenv("GSK_RENDERER")) {
        setenv("GSK_RENDERER", "cairo", 1);
    }
    gtk_init();
    GMainLoop* loop = g_main_loop_new(NULL, FALSE);
    GtkWidget* window = gtk_window_new();
    gtk_window_set_default_size(GTK_WINDOW(window), 1200, 780);
    GtkWidget* stack = gtk_stack_new();
    gtk_window_set_child(GTK_WINDOW(window), stack);
    for (int i = 1; i < argc; ++i) {
        GtkWidget* view = webkit_web_view_new();
        if (software) {
            webkit_settings_set_hardware_acceleration_policy(
                webkit_web_view_get_settings(WEBKIT_WEB_VIEW(view)), WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
        }
        gtk_stack_add_child(GTK_STACK(stack), view);
        webkit_web_view_load_uri(WEBKIT_WEB_VIEW(view), argv[i]);
    }
    g_signal_connect(window, "destroy", G_CALLBACK(closed), loop);
    gtk_window_present(GTK_WINDOW(window));
    g_main_loop_run(loop);
    return 0;
}
