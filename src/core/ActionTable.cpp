#include "core/ActionTable.h"

#include "core/KeyBinding.h"

namespace velder::ActionTable {

namespace {

using Kind = BrowserAction::Kind;
using namespace KeyModifier;

std::vector<ActionRow> makeRows()
{
    return {
        { "newTab", "New Tab", Kind::newTab, "New tab" },
        { "closeTab", "Close Tab", Kind::closeTab, "Close tab" },
        { "closeWindow", "Close Window", Kind::closeWindow, "Close window" },
        { "reopenClosedTab", "Reopen Closed Tab", Kind::reopenClosedTab, "Reopen closed tab" },
        { "nextTab", "Select Next Tab", Kind::nextTab, "Next tab" },
        { "prevTab", "Select Previous Tab", Kind::prevTab, "Previous tab" },
        { "selectLastTab", "Select Last Tab", Kind::selectLastTab, "Select last tab" },
        { "newWindow", "New Window", Kind::newWindow, "New window" },
        { "newPrivateWindow", "New Private Window", Kind::newPrivateWindow, "New private window" },
        { "focusAddressBar", "Open Location", Kind::focusAddressBar, "Focus address bar" },
        { "find", "Find\xe2\x80\xa6", Kind::find, "Find on page" },
        { "findNext", "Find Next", Kind::findNext, "Find next" },
        { "findPrev", "Find Previous", Kind::findPrev, "Find previous" },
        { "reload", "Reload", Kind::reload, "Reload" },
        { "hardReload", "Force Reload", Kind::hardReload, "Reload, ignoring cache" },
        { "stop", "Stop", Kind::stop, "Stop" },
        { "back", "Back", Kind::back, "Back" },
        { "forward", "Forward", Kind::forward, "Forward" },
        { "home", "Home", Kind::home, "Home" },
        { "zoomIn", "Zoom In", Kind::zoomIn, "Zoom in" },
        { "zoomOut", "Zoom Out", Kind::zoomOut, "Zoom out" },
        { "zoomReset", "Actual Size", Kind::zoomReset, "Actual size" },
        { "devTools", "Developer Tools", Kind::devTools, "Developer tools" },
        { "history", "Show All History", Kind::history, "History" },
        { "settings", "Settings\xe2\x80\xa6", Kind::settings, "Settings" },
        { "about", "About Velder", std::nullopt },
        { "checkForUpdates", "Check for Updates\xe2\x80\xa6", std::nullopt },
        { "quit", "Quit Velder", std::nullopt, {}, "q", command, true },
        { "undo", "Undo", std::nullopt, {}, "z", command },
        { "redo", "Redo", std::nullopt, {}, "z", command | shift },
        { "cut", "Cut", std::nullopt, {}, "x", command },
        { "copy", "Copy", std::nullopt, {}, "c", command },
        { "paste", "Paste", std::nullopt, {}, "v", command },
        { "selectAll", "Select All", std::nullopt, {}, "a", command },
        { "toggleFullScreen", "Enter Full Screen", std::nullopt, {}, "F11", 0, true },
        { "focusNextPart", "Focus Next Part", std::nullopt, {}, "F6", 0, true },
        { "focusPreviousPart", "Focus Previous Part", std::nullopt, {}, "F6", shift, true },
        { "minimize", "Minimize", std::nullopt },
        { "zoom", "Zoom", std::nullopt },
    };
}

} // namespace

const std::vector<ActionRow>& rows()
{
    static const std::vector<ActionRow> table = makeRows();
    return table;
}

const ActionRow* named(std::string_view name)
{
    for (const ActionRow& row : rows()) {
        if (row.name == name) {
            return &row;
        }
    }
    return nullptr;
}

const ActionRow* forAction(BrowserAction action)
{
    for (const ActionRow& row : rows()) {
        if (row.action && *row.action == action) {
            return &row;
        }
    }
    return nullptr;
}

const ActionRow* windowKey(std::string_view key, std::uint32_t flags)
{
    constexpr std::uint32_t mask = command | option | control | shift;
    for (const ActionRow& row : rows()) {
        if (row.isWindowKey && row.key == key && (flags & mask) == row.modifiers) {
            return &row;
        }
    }
    return nullptr;
}

} // namespace velder::ActionTable
