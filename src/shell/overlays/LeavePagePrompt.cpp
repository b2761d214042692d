#include "shell/overlays/LeavePagePrompt.h"

#include <utility>

namespace velder {

namespace {

GtkWidget* button(const char* label, const char* style)
{
    GtkWidget* widget = gtk_button_new_with_label(label);
    gtk_widget_add_css_class(widget, style);
    gtk_widget_set_hexpand(widget, TRUE);
    return widget;
}

} // namespace

LeavePagePrompt::LeavePagePrompt(GtkWindow* parent, Answer answer)
    : m_window(GObjectPtr<GtkWindow>::retain(GTK_WINDOW(gtk_window_new())))
    , m_leave(button("Leave", "velder-prompt-leave"))
    , m_stay(button("Stay", "velder-prompt-stay"))
    , m_answer(std::move(answer))
{
    GtkWindow* window = m_window.get();
    gtk_window_set_title(window, "Leave page?");
    gtk_window_set_transient_for(window, parent);
    gtk_window_set_modal(window, TRUE);
    gtk_window_set_resizable(window, FALSE);
    gtk_window_set_destroy_with_parent(window, TRUE);
    gtk_widget_add_css_class(GTK_WIDGET(window), "velder-prompt");

    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 12);
    gtk_widget_set_margin_start(box, 20);
    gtk_widget_set_margin_end(box, 20);
    gtk_widget_set_margin_top(box, 16);
    gtk_widget_set_margin_bottom(box, 16);
    GtkWidget* title = gtk_label_new("Leave page?");
    gtk_widget_add_css_class(title, "velder-prompt-title");
    GtkWidget* detail = gtk_label_new("Changes you made may not be saved.");
    GtkWidget* buttons = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 8);
    gtk_box_set_homogeneous(GTK_BOX(buttons), TRUE);
    gtk_box_append(GTK_BOX(buttons), m_leave);
    gtk_box_append(GTK_BOX(buttons), m_stay);
    gtk_box_append(GTK_BOX(box), title);
    gtk_box_append(GTK_BOX(box), detail);
    gtk_box_append(GTK_BOX(box), buttons);
    gtk_window_set_child(window, box);

    g_signal_connect_swapped(m_leave, "clicked", G_CALLBACK(+[](LeavePagePrompt* self) { self->answer(true); }), this);
    g_signal_connect_swapped(m_stay, "clicked", G_CALLBACK(+[](LeavePagePrompt* self) { self->answer(false); }), this);
    g_signal_connect_swapped(window, "close-request", G_CALLBACK(+[](LeavePagePrompt* self) -> gboolean {
        self->answer(false);
        return TRUE;
    }),
        this);
    GtkEventController* keys = gtk_event_controller_key_new();
    g_signal_connect_swapped(keys, "key-pressed",
        G_CALLBACK(+[](LeavePagePrompt* self, guint keyval, guint, GdkModifierType) -> gboolean {
            if (keyval != GDK_KEY_Escape) {
                return FALSE;
            }
            self->answer(false);
            return TRUE;
        }),
        this);
    gtk_widget_add_controller(GTK_WIDGET(window), keys);

    gtk_window_set_default_widget(window, m_stay);
    gtk_window_present(window);
    gtk_widget_grab_focus(m_stay);
}

LeavePagePrompt::~LeavePagePrompt()
{
    // Gone unanswered (its window closed first): whoever asked takes the default.
    dismiss();
}

void LeavePagePrompt::answer(bool leave)
{
    if (!m_answer) {
        return;
    }
    Answer answered = std::exchange(m_answer, nullptr);
    dismiss();
    answered(leave);
}

void LeavePagePrompt::dismiss()
{
    // The buttons go with the window, which alone is held: once it is destroyed nothing can call back.
    if (std::exchange(m_dismissed, true)) {
        return;
    }
    m_answer = nullptr;
    g_signal_handlers_disconnect_by_data(m_window.get(), this);
    gtk_window_destroy(m_window.get());
}

} // namespace velder
