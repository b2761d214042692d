#include "shell/chrome/FieldStyle.h"

#include "core/Palette.h"
#include "core/Theme.h"
#include "shell/chrome/Drawing.h"

#include <string>

namespace velder::FieldStyle {

namespace {

struct Sheet {
    GtkCssProvider* provider = nullptr;
    std::string loaded;
};

Sheet& sheet()
{
    static Sheet* shared = new Sheet { gtk_css_provider_new(), {} };
    return *shared;
}

std::string css()
{
    Color field = Palette::fieldColor();
    Color text = Theme::readable(Palette::textColor(), field);
    Color passive = Theme::readable(Palette::passiveColor(), field);
    Color highlight = Palette::highlightColor();
    std::string result;
    result += "text.velder-field { color: " + Drawing::cssColor(text) + "; caret-color: " + Drawing::cssColor(text)
        + "; background: none; border: none; box-shadow: none; outline: none; padding: 0; margin: 0; min-height: 0; "
          "}\n";
    result += "text.velder-field > selection { background-color: " + Drawing::cssColor(highlight)
        + "; color: " + Drawing::cssColor(Theme::blackOrWhiteOn(highlight)) + "; }\n";
    result += "text.velder-field > placeholder { color: " + Drawing::cssColor(passive) + "; opacity: 1; }\n";
    result += "text.velder-address { font-size: 13px; }\n";
    result += "text.velder-find { font-size: 12px; }\n";
    result += "label.velder-find-count { font-size: 11px; font-feature-settings: \"tnum\"; color: "
        + Drawing::cssColor(passive) + "; padding: 0; margin: 0; min-height: 0; }\n";
    result += "label.velder-notice { font-size: 13px; color: " + Drawing::cssColor(text) + "; }\n";
    return result;
}

} // namespace

void refresh()
{
    Sheet& shared = sheet();
    std::string text = css();
    if (text == shared.loaded) {
        return;
    }
    gtk_css_provider_load_from_data(shared.provider, text.c_str(), static_cast<gssize>(text.size()));
    shared.loaded = std::move(text);
}

void attach(GtkWidget* widget, Kind kind)
{
    Sheet& shared = sheet();
    GdkDisplay* display = gtk_widget_get_display(widget);
    if (!g_object_get_data(G_OBJECT(display), "velder-field-style")) {
        gtk_style_context_add_provider_for_display(
            display, GTK_STYLE_PROVIDER(shared.provider), GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
        g_object_set_data(G_OBJECT(display), "velder-field-style", shared.provider);
    }
    refresh();
    switch (kind) {
    case Kind::address:
        gtk_widget_add_css_class(widget, "velder-field");
        gtk_widget_add_css_class(widget, "velder-address");
        break;
    case Kind::find:
        gtk_widget_add_css_class(widget, "velder-field");
        gtk_widget_add_css_class(widget, "velder-find");
        break;
    case Kind::count:
        gtk_widget_add_css_class(widget, "velder-find-count");
        break;
    case Kind::notice:
        gtk_widget_add_css_class(widget, "velder-notice");
        break;
    }
}

} // namespace velder::FieldStyle
