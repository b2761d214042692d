#include "shell/overlays/LinkStatus.h"

namespace velder {

namespace {

// How close the pointer may come to the label's corner before it moves to the other one.
constexpr double nearHeight = 48;
constexpr double nearWidthShare = 0.5;

} // namespace

LinkStatus::LinkStatus()
    : m_label(GObjectPtr<GtkWidget>::adopt(gtk_label_new(nullptr)))
{
    GtkWidget* label = m_label.get();
    gtk_widget_add_css_class(label, "velder-link-status");
    gtk_label_set_ellipsize(GTK_LABEL(label), PANGO_ELLIPSIZE_MIDDLE);
    gtk_label_set_max_width_chars(GTK_LABEL(label), 90);
    gtk_label_set_single_line_mode(GTK_LABEL(label), TRUE);
    gtk_widget_set_halign(label, GTK_ALIGN_START);
    gtk_widget_set_valign(label, GTK_ALIGN_END);
    gtk_widget_set_margin_start(label, 4);
    gtk_widget_set_margin_end(label, 4);
    gtk_widget_set_margin_bottom(label, 4);
    gtk_widget_set_can_target(label, FALSE);
    gtk_widget_set_visible(label, FALSE);
}

void LinkStatus::show(const std::string& url)
{
    gtk_label_set_text(GTK_LABEL(m_label.get()), url.c_str());
    gtk_widget_set_visible(m_label.get(), !url.empty());
    if (url.empty()) {
        gtk_widget_set_halign(m_label.get(), GTK_ALIGN_START);
    }
}

void LinkStatus::pointerAt(double x, double y, double width, double height)
{
    if (!isShowing()) {
        return;
    }
    bool nearBottom = y >= height - nearHeight;
    bool nearLeft = x <= width * nearWidthShare;
    gtk_widget_set_halign(m_label.get(), nearBottom && nearLeft ? GTK_ALIGN_END : GTK_ALIGN_START);
}

} // namespace velder
