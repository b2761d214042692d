#include "core/AboutPage.h"

#include "core/ActionTable.h"
#include "core/AppInfo.h"
#include "core/Html.h"
#include "core/InternalPages.h"
#include "core/PageShell.h"
#include "core/Shortcuts.h"
#include "core/Text.h"

#include <algorithm>

namespace velder::AboutPage {

std::string_view label(BrowserAction action)
{
    if (action.kind == BrowserAction::Kind::selectTab) {
        return "Select tab by position";
    }
    const ActionRow* row = ActionTable::forAction(action);
    return row ? row->description : std::string_view();
}

std::string keyGlyph(std::string_view key)
{
    static constexpr std::pair<std::string_view, std::string_view> names[] {
        { "Tab", "Tab" },
        { "Escape", "Esc" },
        { "Left", "\xE2\x86\x90" },
        { "Right", "\xE2\x86\x92" },
        { "Home", "Home" },
        { "Page_Down", "Page Down" },
        { "Page_Up", "Page Up" },
    };
    for (auto& [name, glyph] : names) {
        if (key == name) {
            return std::string(glyph);
        }
    }
    if (key.size() > 1 && key[0] == 'F') {
        return std::string(key);
    }
    std::string upper(key);
    for (char& c : upper) {
        if (c >= 'a' && c <= 'z') {
            c = static_cast<char>(c - ('a' - 'A'));
        }
    }
    return upper;
}

std::string glyphs(const KeyBinding& binding)
{
    std::string text;
    if (binding.modifiers & (KeyModifier::command | KeyModifier::control)) {
        text += "Ctrl+";
    }
    if (binding.modifiers & KeyModifier::option) {
        text += "Alt+";
    }
    if (binding.modifiers & KeyModifier::shift) {
        text += "Shift+";
    }
    return text + keyGlyph(binding.key);
}

std::string rows(std::string_view heading, const std::vector<std::pair<std::string, std::string>>& pairs)
{
    std::string html = "<h2>" + Html::escape(heading) + "</h2><dl class=\"kv\">";
    for (const auto& [label, value] : pairs) {
        html += "<dt>" + Html::escape(label) + "</dt><dd>" + Html::escape(value) + "</dd>";
    }
    return html + "</dl>";
}

std::string keyboardSection()
{
    // Rows in the order their action first appears; later bindings add their keys to that row.
    std::vector<std::pair<std::string_view, std::vector<std::string>>> table;
    for (const auto& binding : Shortcuts::bindings()) {
        std::string keys = binding.action.kind == BrowserAction::Kind::selectTab ? "Ctrl+1\xE2\x80\xA6"
                                                                                   "Ctrl+8"
                                                                                 : glyphs(binding);
        std::string_view name = label(binding.action);
        auto row = std::find_if(table.begin(), table.end(), [&](const auto& r) { return r.first == name; });
        if (row == table.end()) {
            table.push_back({ name, { keys } });
        } else if (std::find(row->second.begin(), row->second.end(), keys) == row->second.end()) {
            row->second.push_back(keys);
        }
    }
    std::string html
        = "<h2>Keyboard</h2>\n<table><thead><tr><th>Action</th><th class=\"num\">Keys</th></tr></thead><tbody>";
    for (const auto& [name, keys] : table) {
        std::string joined;
        for (const auto& key : keys) {
            joined += (joined.empty() ? "" : ", ") + key;
        }
        html += "<tr><td>" + Html::escape(name) + "</td><td class=\"num\">" + Html::escape(joined) + "</td></tr>";
    }
    return html + "</tbody></table>";
}

std::string render()
{
    auto host = InternalPages::shared().host();
    std::string engine = host ? host->engineVersion() : "unknown";
    std::string toolkit = host ? host->toolkitVersion() : "unknown";
    std::string body
        = rows("Version", { { "Velder", AppInfo::version() }, { "WebKitGTK", engine }, { "GTK", toolkit } });
    body += rows("Data",
        {
            { "Profile", AppInfo::dataDirectory() },
            { "Settings", AppInfo::vaultFile() },
            { "History", AppInfo::historyFile() },
            { "Engine profile", AppInfo::engineDirectory() },
            { "Log", AppInfo::engineLogFile() },
            { "Archived installers", AppInfo::archiveDirectory() },
        });
    body += keyboardSection();
    return PageShell::render("About Velder", "About Velder", PageShell::nav(InternalRoute::about), body);
}

} // namespace velder::AboutPage
