#include "shell/desktop/Downloads.h"

#include "bridge/VLDDownloadCallback.h"
#include "bridge/VLDDownloadPath.h"
#include "core/AppInfo.h"
#include "core/RateLimit.h"
#include "core/Vault.h"
#include "glib/GCharPtr.h"
#include "glib/GObjectPtr.h"

#include <cstdlib>
#include <filesystem>
#include <gtk/gtk.h>
#include <map>

namespace velder {

namespace fs = std::filesystem;

namespace {

struct Progress {
    std::string path;
    std::int64_t received = 0;
    std::int64_t total = -1; // unknown
};

std::map<std::uint32_t, Progress>& inFlight()
{
    static std::map<std::uint32_t, Progress> downloads;
    return downloads;
}

// Each download moves the launcher's bar at most ten times a second.
RateLimit& launcherRate()
{
    static RateLimit rate(std::chrono::milliseconds(100));
    return rate;
}

// The launcher entry protocol that docks and panels read: one progress for all running downloads.
void publishLauncherProgress()
{
    GDBusConnection* bus
        = g_application_get_default() ? g_application_get_dbus_connection(g_application_get_default()) : nullptr;
    if (!bus) {
        return;
    }
    std::int64_t received = 0;
    std::int64_t total = 0;
    bool known = true;
    for (auto& [id, progress] : inFlight()) {
        (void)id;
        received += progress.received;
        if (progress.total < 1) {
            known = false;
        } else {
            total += progress.total;
        }
    }
    bool visible = !inFlight().empty() && known && total > 0;
    GVariantBuilder properties;
    g_variant_builder_init(&properties, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&properties, "{sv}", "progress",
        g_variant_new_double(visible ? static_cast<double>(received) / static_cast<double>(total) : 0.0));
    g_variant_builder_add(&properties, "{sv}", "progress-visible", g_variant_new_boolean(visible));
    std::string appUri = std::string("application://") + AppInfo::applicationId + ".desktop";
    g_dbus_connection_emit_signal(bus, nullptr, "/local/velder/Velder/LauncherEntry",
        "com.canonical.Unity.LauncherEntry", "Update", g_variant_new("(sa{sv})", appUri.c_str(), &properties), nullptr);
}

void finish(std::uint32_t identifier, bool completed)
{
    auto found = inFlight().find(identifier);
    if (found == inFlight().end()) {
        return;
    }
    std::string path = found->second.path;
    inFlight().erase(found);
    launcherRate().forget(identifier);
    publishLauncherProgress();
    if (!completed) {
        return;
    }
    GCharPtr uri(g_filename_to_uri(path.c_str(), nullptr, nullptr));
    if (uri) {
        gtk_recent_manager_add_item(gtk_recent_manager_get_default(), uri.get());
    }
    if (GApplication* application = g_application_get_default()) {
        auto notification = GObjectPtr<GNotification>::adopt(g_notification_new("Download finished"));
        g_notification_set_body(notification.get(), fs::path(path).filename().c_str());
        g_application_send_notification(application, "velder-download", notification.get());
    }
}

} // namespace

void Downloads::decideDestination(
    const VLDDownloadItem& item, GtkWindow* window, std::shared_ptr<VLDDownloadCallback> callback)
{
    if (!Vault::shared().snapshot()->settings.askWhereToSaveDownloads) {
        // The bridge reserves the numbered name in the download folder, or cancels when none is left.
        callback->continueWithPath(std::nullopt);
        return;
    }
    std::string name = item.suggestedFilename.empty() ? "download" : item.suggestedFilename;
    GtkFileChooserNative* chooser
        = gtk_file_chooser_native_new("Save File", window, GTK_FILE_CHOOSER_ACTION_SAVE, "_Save", "_Cancel");
    gtk_file_chooser_set_current_name(GTK_FILE_CHOOSER(chooser), name.c_str());
    std::string directory = VLDDownloadPath::downloadDirectory();
    std::error_code ignored;
    if (fs::create_directories(directory, ignored), fs::is_directory(directory, ignored)) {
        auto folder = GObjectPtr<GFile>::adopt(g_file_new_for_path(directory.c_str()));
        gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(chooser), folder.get(), nullptr);
    }
    gtk_file_chooser_set_create_folders(GTK_FILE_CHOOSER(chooser), TRUE);
    gtk_native_dialog_set_modal(GTK_NATIVE_DIALOG(chooser), window != nullptr);
    auto* held = new std::shared_ptr<VLDDownloadCallback>(std::move(callback));
    g_signal_connect(chooser, "response", G_CALLBACK(+[](GtkNativeDialog* dialog, int response, gpointer data) {
        auto* callback = static_cast<std::shared_ptr<VLDDownloadCallback>*>(data);
        std::optional<std::string> path;
        if (response == GTK_RESPONSE_ACCEPT) {
            auto file = GObjectPtr<GFile>::adopt(gtk_file_chooser_get_file(GTK_FILE_CHOOSER(dialog)));
            if (file) {
                GCharPtr chosen(g_file_get_path(file.get()));
                if (chosen) {
                    path = chosen.get();
                }
            }
        }
        if (path) {
            (*callback)->continueWithPath(path);
        } else {
            (*callback)->cancel();
        }
        delete callback;
        g_object_unref(dialog);
    }),
        held);
    gtk_native_dialog_show(GTK_NATIVE_DIALOG(chooser));
}

void Downloads::update(const VLDDownloadItem& item)
{
    if (item.fullPath.empty()) {
        return; // the destination isn't known yet
    }
    if (!item.isComplete && !item.isCanceled && item.isInProgress) {
        Progress& progress = inFlight()[item.identifier];
        progress.path = item.fullPath;
        progress.total = item.totalBytes >= 1 ? item.totalBytes : -1;
        progress.received = item.receivedBytes;
        if (launcherRate().admit(item.identifier, std::chrono::steady_clock::now())) {
            publishLauncherProgress();
        }
        return;
    }
    if (item.isComplete || item.isCanceled) {
        finish(item.identifier, item.isComplete);
    }
}

int Downloads::inFlightCount()
{
    return static_cast<int>(inFlight().size());
}

} // namespace velder
