#include "core/SettingsPage.h"

#include "core/HistoryStore.h"
#include "core/Html.h"
#include "core/InternalPages.h"
#include "core/NotificationCenter.h"
#include "core/PageShell.h"
#include "core/Palette.h"
#include "core/Text.h"
#include "core/Theme.h"
#include "core/Vault.h"
#include "core/VersionArchive.h"

#include <charconv>
#include <vector>

namespace velder::SettingsPage {

namespace {

// Carries the scroll position across a save, saves on every change (a text field when it is left,
// so a half-typed address is never stored), and turns Enter in a text field into leaving it.
constexpr std::string_view pageScript = R"JS(
(function () {
  var form = document.getElementById("settings");
  if (!form) {
    return;
  }
  var key = "vld-settings-scroll";
  function rememberScroll() {
    try {
      sessionStorage.setItem(key, String(window.scrollY));
    } catch (e) {}
  }
  try {
    var saved = sessionStorage.getItem(key);
    if (saved !== null) {
      window.scrollTo(0, parseInt(saved, 10) || 0);
      sessionStorage.removeItem(key);
    }
  } catch (e) {}
  form.addEventListener("submit", rememberScroll);
  form.addEventListener("change", function () {
    rememberScroll();
    form.submit();
  });
  form.addEventListener("keydown", function (event) {
    var field = event.target;
    if (event.key === "Enter" && field && field.tagName === "INPUT" && field.type === "text") {
      event.preventDefault();
      field.blur();
    }
  });
})();
)JS";

struct TextField {
    const char* label;
    const char* name;
    const char* tooltip;
    std::string value;
};

struct ColorField {
    const char* label;
    const char* name;
    const std::vector<Swatch>* list;
    const char* tooltip;
    std::string AppSettings::*setting;
};

struct CheckField {
    const char* label;
    const char* name;
    const char* tooltip;
    bool AppSettings::*setting;
};

const std::vector<ColorField>& colorFields()
{
    static const std::vector<ColorField> fields {
        { "Text", "TextColor", &Palette::ink(), "What you are meant to read.", &AppSettings::textColor },
        { "Highlight", "HighlightColor", &Palette::ink(), "What is asking for attention.",
            &AppSettings::highlightColor },
        { "Passive", "PassiveColor", &Palette::ink(), "What is present but not the point.",
            &AppSettings::passiveColor },
        { "Field", "FieldColor", &Palette::surface(), "What you type into: the address bar and the row it sits in.",
            &AppSettings::fieldColor },
        { "Border", "BorderColor", &Palette::surface(), "The window frame: the title bar row the tabs sit on.",
            &AppSettings::borderColor },
    };
    return fields;
}

const std::vector<CheckField>& optionFields()
{
    static const std::vector<CheckField> fields {
        { "Restore session", "RestoreSession", "Reopen the windows and tabs that were open at quit.",
            &AppSettings::restoreSession },
        { "Location services", "LocationEnabled",
            "Whether sites may ask for your location at all. Off hides the pin outright.",
            &AppSettings::locationEnabled },
        { "Ask where to save downloads", "AskWhereToSaveDownloads", "Show a save panel for every download.",
            &AppSettings::askWhereToSaveDownloads },
    };
    return fields;
}

std::string checkbox(const char* label, const char* name, const char* tooltip, bool checked)
{
    return "<label class=\"check\" title=\"" + Html::escape(tooltip) + "\"><input type=\"checkbox\" name=\"" + name
        + "\" value=\"1\"" + (checked ? " checked" : "") + ">" + Html::escape(label) + "</label>";
}

std::string generalSection(const AppSettings& settings)
{
    std::vector<TextField> fields {
        { "Search template", "SearchTemplate", "{q} is replaced with the URL-encoded query.", settings.searchTemplate },
        { "Homepage", "Homepage", "Where a window opens: startup, Ctrl+N, and Home.", settings.homepage },
        { "New tab page", "NewTabPage", "Where a tab opens: Ctrl+T and the + button.", settings.newTabPage },
        { "Max history", "MaxHistory", "0 to 100000. Zero means keep nothing.", std::to_string(settings.maxHistory) },
    };
    std::string html = "<h2>General</h2>\n<div class=\"grid\">\n";
    for (size_t i = 0; i < fields.size(); ++i) {
        const auto& field = fields[i];
        if (i > 0) {
            html += "\n";
        }
        html += "<span class=\"lbl\" title=\"" + Html::escape(field.tooltip) + "\">" + Html::escape(field.label)
            + "</span>\n<input type=\"text\" name=\"" + field.name + "\" value=\"" + Html::escape(field.value) + "\">";
    }
    return html + "\n</div>";
}

std::string colorsSection(const AppSettings& settings)
{
    std::string html = "<h2>Colors</h2>\n<div class=\"grid\">\n";
    bool first = true;
    for (const auto& field : colorFields()) {
        if (!first) {
            html += "\n";
        }
        first = false;
        html += "<span class=\"lbl\" title=\"" + Html::escape(field.tooltip) + "\">" + Html::escape(field.label)
            + "</span>\n<div class=\"swatches\">";
        const std::string& stored = settings.*field.setting;
        for (const auto& swatch : *field.list) {
            html += "<label class=\"sw\" title=\"" + Html::escape(swatch.label) + "\"><input type=\"radio\" name=\""
                + field.name + "\" value=\"" + Html::escape(swatch.key) + "\""
                + (swatch.key == stored ? " checked" : "") + "><i style=\"background:" + PageShell::hex(swatch.color)
                + "\"></i></label>";
        }
        html += "</div>";
    }
    return html + "\n</div>";
}

std::string optionsSection(const AppSettings& settings)
{
    std::string html = "<h2>Options</h2>\n<div class=\"checks\">\n";
    bool first = true;
    for (const auto& field : optionFields()) {
        if (!first) {
            html += "\n";
        }
        first = false;
        html += checkbox(field.label, field.name, field.tooltip, settings.*field.setting);
    }
    return html + "\n</div>";
}

std::string archiveQuestion()
{
    auto contents = VersionArchive::contents();
    return "<div class=\"warn\">\n  <span>" + std::to_string(contents.count) + " archived "
        + (contents.count == 1 ? "payload is" : "payloads are") + " still on disk, taking "
        + VersionArchive::describe(contents.bytes)
        + ".</span>\n  <button class=\"danger small\" type=\"submit\" name=\"Archive\" value=\"delete\">Delete "
          "them</button>\n  <button class=\"quiet small\" type=\"submit\" name=\"Archive\" value=\"keep\">Keep "
          "archiving</button>\n</div>";
}

std::string maintenanceSection(const AppSettings& settings, bool confirmArchive)
{
    // While the question stands the box shows as the user left it, unticked, though archiving is still on.
    std::string html = "<h2>Maintenance</h2>\n<div class=\"checks\"><div class=\"row\">"
        + checkbox("Archive previous versions", "ArchiveOldVersions",
            "Keep a copy of every installer the updater stages.", settings.archiveOldVersions && !confirmArchive)
        + "</div></div>\n";
    if (confirmArchive) {
        html += archiveQuestion();
    }
    return html;
}

std::string noticeHtml(const Notice& notice)
{
    switch (notice.kind) {
    case Notice::Kind::none:
        return "&nbsp;";
    case Notice::Kind::saved:
        return "<span class=\"saved\">Saved.</span>";
    case Notice::Kind::done:
        return "<span class=\"saved\">" + Html::escape(notice.text) + "</span>";
    }
    return {};
}

// Outside the settings form, so that these carry no "save".
std::string maintenanceButtons()
{
    static constexpr std::pair<MaintenanceAction, const char*> buttons[] {
        { MaintenanceAction::history, "Clear history" },
        { MaintenanceAction::browsingData, "Clear cookies &amp; cache" },
        { MaintenanceAction::location, "Forget location answers" },
    };
    std::string html = "<form method=\"get\" action=\"velder://settings/\">\n  <div class=\"actions\">\n    ";
    bool first = true;
    for (auto& [action, caption] : buttons) {
        if (!first) {
            html += "\n            ";
        }
        first = false;
        html += "<button class=\"danger\" type=\"submit\" name=\"clear\" value=\"" + std::string(rawValue(action))
            + "\">" + caption + "</button>";
    }
    return html + "\n  </div>\n</form>";
}

// A decimal integer with an optional sign, blanks and tabs around it ignored; nothing on anything else.
std::optional<std::int64_t> parseMaxHistory(std::string_view given)
{
    std::string_view text = Text::trimmedBlanks(given);
    if (text.empty()) {
        return std::nullopt;
    }
    std::string digits(text);
    if (digits[0] == '+') {
        digits.erase(0, 1);
        if (digits.empty() || digits[0] == '-') {
            return std::nullopt;
        }
    }
    std::int64_t value = 0;
    auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error != std::errc() || end != digits.data() + digits.size()) {
        return std::nullopt;
    }
    return value;
}

bool sameColors(const AppSettings& a, const AppSettings& b)
{
    return a.textColor == b.textColor && a.highlightColor == b.highlightColor && a.passiveColor == b.passiveColor
        && a.fieldColor == b.fieldColor && a.borderColor == b.borderColor;
}

} // namespace

std::string_view rawValue(MaintenanceAction action)
{
    switch (action) {
    case MaintenanceAction::history:
        return "history";
    case MaintenanceAction::browsingData:
        return "browsingdata";
    case MaintenanceAction::location:
        return "location";
    }
    return {};
}

std::optional<MaintenanceAction> maintenanceAction(std::string_view value)
{
    for (auto action : { MaintenanceAction::history, MaintenanceAction::browsingData, MaintenanceAction::location }) {
        if (rawValue(action) == value) {
            return action;
        }
    }
    return std::nullopt;
}

std::string_view script()
{
    return pageScript;
}

ArchiveDecision archiveDecision(const FormValues& form, bool currentlyOn)
{
    if (auto answer = form.string("Archive")) {
        return *answer == "delete" ? ArchiveDecision::purge : ArchiveDecision::on;
    }
    bool wanted = form.flag("ArchiveOldVersions");
    // Turning archiving off with installers on disk first asks what becomes of them.
    if (currentlyOn && !wanted && VersionArchive::contents().count > 0) {
        return ArchiveDecision::ask;
    }
    return wanted ? ArchiveDecision::on : ArchiveDecision::off;
}

std::string render(const Notice& notice, bool confirmArchive)
{
    AppSettings settings = Vault::shared().snapshot()->settings;
    std::string body = "<form class=\"settings\" id=\"settings\" method=\"get\" action=\"velder://settings/\">\n"
                       "<input type=\"hidden\" name=\"save\" value=\"1\">\n";
    body += generalSection(settings);
    body += "\n";
    body += colorsSection(settings);
    body += "\n";
    body += optionsSection(settings);
    body += "\n";
    body += maintenanceSection(settings, confirmArchive);
    body += "\n<div class=\"actions\">" + noticeHtml(notice)
        + "</div>\n<noscript><div class=\"actions\"><button type=\"submit\">Save</button></div></noscript>\n</form>\n";
    body += maintenanceButtons();
    body += "\n<script>";
    body += pageScript;
    body += "</script>";
    return PageShell::render("Settings", "Settings", PageShell::nav(InternalRoute::settings), body);
}

std::string save(const FormValues& form)
{
    const AppSettings before = Vault::shared().snapshot()->settings;
    AppSettings next = before;

    if (auto value = form.string("SearchTemplate")) {
        next.searchTemplate = *value;
    }
    if (auto value = form.string("Homepage")) {
        next.homepage = *value;
    }
    if (auto value = form.string("NewTabPage")) {
        next.newTabPage = *value;
    }
    if (auto value = form.string("MaxHistory")) {
        if (auto number = parseMaxHistory(*value)) {
            next.maxHistory = *number; // the vault clamps it to 0...100000
        }
    }
    for (const auto& field : colorFields()) {
        if (auto key = form.string(field.name); key && Palette::contains(*key, *field.list)) {
            next.*field.setting = *key;
        }
    }
    // An unticked box sends nothing, so a missing name means off.
    for (const auto& field : optionFields()) {
        next.*field.setting = form.flag(field.name);
    }

    ArchiveDecision decision = archiveDecision(form, before.archiveOldVersions);
    next.archiveOldVersions = decision == ArchiveDecision::on || decision == ArchiveDecision::ask;
    if (decision == ArchiveDecision::purge) {
        VersionArchive::purge();
    }
    Vault::shared().update([&](VaultData& data) { data.settings = next; });
    if (decision == ArchiveDecision::on && !before.archiveOldVersions) {
        VersionArchive::capture();
    }

    if (!sameColors(before, Vault::shared().snapshot()->settings)) {
        NotificationCenter::defaultCenter().post(Theme::didChangeNotification);
    }
    return decision == ArchiveDecision::ask ? "velder://settings/?confirmarchive=1" : "velder://settings/?saved=1";
}

std::string performMaintenance(MaintenanceAction action, std::optional<std::uint64_t> requestingView)
{
    auto host = InternalPages::shared().host();
    switch (action) {
    case MaintenanceAction::history:
        HistoryStore::shared().clear();
        break;
    case MaintenanceAction::browsingData:
        if (host && requestingView) {
            host->clearCookiesAndCache(*requestingView);
        }
        break;
    case MaintenanceAction::location:
        if (host) {
            host->forgetLocationAnswers();
        }
        break;
    }
    return "velder://settings/?done=" + std::string(rawValue(action));
}

} // namespace velder::SettingsPage
