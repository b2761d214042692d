#include "shell/desktop/UpdateAlertDialogs.h"

#include <gtk/gtk.h>

namespace velder {

namespace {

enum Response { first = 1000, second = 1001 };

GtkWindow* activeWindow()
{
    GApplication* application = g_application_get_default();
    return GTK_IS_APPLICATION(application) ? gtk_application_get_active_window(GTK_APPLICATION(application)) : nullptr;
}

// GTK 4.10 replaces the message dialog with GtkAlertDialog, which Debian 12's GTK 4.8 doesn't have.
G_GNUC_BEGIN_IGNORE_DEPRECATIONS
void show(const std::string& title, const std::string& text, const std::string& firstButton,
    const std::string& secondButton, std::function<void(bool)> answer)
{
    GtkWidget* dialog = gtk_message_dialog_new(
        activeWindow(), GTK_DIALOG_MODAL, GTK_MESSAGE_INFO, GTK_BUTTONS_NONE, "%s", title.c_str());
    gtk_message_dialog_format_secondary_text(GTK_MESSAGE_DIALOG(dialog), "%s", text.c_str());
    gtk_dialog_add_button(GTK_DIALOG(dialog), firstButton.c_str(), first);
    if (!secondButton.empty()) {
        gtk_dialog_add_button(GTK_DIALOG(dialog), secondButton.c_str(), second);
    }
    gtk_dialog_set_default_response(GTK_DIALOG(dialog), first);
    using Answer = std::function<void(bool)>;
    g_signal_connect_data(
        dialog, "response", G_CALLBACK(+[](GtkDialog* dialog, int response, gpointer data) {
            Answer answer = *static_cast<Answer*>(data);
            gtk_window_destroy(GTK_WINDOW(dialog));
            if (answer) {
                answer(response == first);
            }
        }),
        new Answer(std::move(answer)), [](gpointer data, GClosure*) { delete static_cast<Answer*>(data); },
        GConnectFlags(0));
    gtk_window_present(GTK_WINDOW(dialog));
}
G_GNUC_END_IGNORE_DEPRECATIONS

} // namespace

void UpdateAlertDialogs::report(const std::string& title, const std::string& text)
{
    show(title, text, "OK", {}, nullptr);
}

void UpdateAlertDialogs::ask(const std::string& title, const std::string& text, const std::string& firstButton,
    const std::string& secondButton, std::function<void(bool first)> answer)
{
    show(title, text, firstButton, secondButton, std::move(answer));
}

} // namespace velder
