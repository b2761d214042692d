#include "core/PageShell.h"

#include "core/Format.h"
#include "core/Html.h"
#include "core/Log.h"
#include "core/Palette.h"
#include "core/Resources.h"
#include "core/Text.h"
#include "core/Theme.h"
#include "core/Vault.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <glib.h>

namespace velder::PageShell {

namespace {

constexpr std::string_view fallbackTemplate
    = "<!doctype html><html lang=\"en\"><head><meta charset=\"utf-8\"><title>{{TITLE}}</title></head>\n"
      "<body><div class=\"wrap\"><header><h1>{{HEADING}}</h1><nav>{{NAV}}</nav></header>{{BODY}}</div></body></html>";

int component(double value)
{
    return static_cast<int>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
}

} // namespace

std::string templateFrom(std::optional<std::string_view> resource)
{
    if (resource && g_utf8_validate(resource->data(), static_cast<gssize>(resource->size()), nullptr)) {
        return std::string(*resource);
    }
    log("Velder: shell.html is missing from the bundle. Internal pages will render unstyled.");
    return std::string(fallbackTemplate);
}

const std::string& templateText()
{
    static const std::string text = templateFrom(Resources::lookup("shell.html"));
    return text;
}

std::string nav(std::optional<InternalRoute> current)
{
    std::string html;
    for (auto route :
        { InternalRoute::dashboard, InternalRoute::about, InternalRoute::settings, InternalRoute::history }) {
        std::string_view label = InternalRoutes::label(route);
        if (route == current) {
            html += "<span>" + Html::escape(label) + "</span>";
        } else {
            html += "<a href=\"" + InternalRoutes::url(route) + "\">" + std::string(label) + "</a>";
        }
    }
    return html;
}

std::string nav(InternalRoute current)
{
    return nav(std::optional<InternalRoute>(current));
}

std::string hex(Color color)
{
    return format("#%02x%02x%02x", component(color.red), component(color.green), component(color.blue));
}

std::string render(std::string_view title, std::string_view heading, std::string_view nav, std::string_view body,
    std::string_view headExtra)
{
    std::string page = templateText();
    if (!headExtra.empty()) {
        if (size_t head = page.find("<head>"); head != std::string::npos) {
            page.insert(head + 6, headExtra);
        }
    }
    // One snapshot for all the colours, so that a page never mixes two palettes.
    auto settings = Vault::shared().snapshot()->settings;
    Color text = Palette::textColor(settings);
    Color accent = Palette::highlightColor(settings);
    Color field = Palette::fieldColor(settings);

    Text::replaceAll(page, "{{TITLE}}", Html::escape(title));
    Text::replaceAll(page, "{{HEADING}}", Html::escape(heading));
    Text::replaceAll(page, "{{NAV}}", nav);
    Text::replaceAll(page, "{{FG}}", hex(text));
    Text::replaceAll(page, "{{FG_LIT}}", hex(Theme::lift(text, 0.35)));
    Text::replaceAll(page, "{{MUTED}}", hex(Palette::passiveColor(settings)));
    Text::replaceAll(page, "{{ACCENT}}", hex(accent));
    Text::replaceAll(page, "{{ON_ACCENT}}", hex(Theme::blackOrWhiteOn(accent)));
    Text::replaceAll(page, "{{PANEL}}", hex(field));
    Text::replaceAll(page, "{{ON_PANEL}}", hex(Theme::readable(text, field)));
    Text::replaceAll(page, "{{BODY}}", body);
    return page;
}

} // namespace velder::PageShell
