#include "core/ActionTable.h"

#include "core/KeyBinding.h"

namespace velder::ActionTable {

namespace {

using Kind = BrowserAction::Kind;
using namespace KeyModifier;

std::vector<ActionRow> makeRows()
{
    return {
        { "newTab", "New Tab", Kind::newTab },
        { "closeTab", "Close Tab", Kind::closeTab },
        { "closeWindow", "Close Window", Kind::closeWindow },
        { "reopenClosedTab", "Reopen Closed Tab", Kind::reopenClosedTab },
        { "nextTab", "Select Next Tab", Kind::nextTab },
        { "prevTab", "Select Previous Tab", Kind::prevTab },
        { "selectLastTab", "Select Last Tab", Kind::selectLastTab },
        { "newWindow", "New Window", Kind::newWindow },
        { "newPrivateWindow", "New Private Window", Kind::newPrivateWindow },
        { "focusAddressBar", "Open Location", Kind::focusAddressBar },
        { "find", "Find\xe2\x80\xa6", Kind::find },
        { "findNext", "Find Next", Kind::findNext },
        { "findPrev", "Find Previous", Kind::findPrev },
        { "reload", "Reload", Kind::reload },
        { "hardReload", "Force Reload", Kind::hardReload },
        { "stop", "Stop", Kind::stop },
        { "back", "Back", Kind::back },
        { "forward", "Forward", Kind::forward },
        { "home", "Home", Kind::home },
        { "zoomIn", "Zoom In", Kind::zoomIn },
        { "zoomOut", "Zoom Out", Kind::zoomOut },
        { "zoomReset", "Actual Size", Kind::zoomReset },
        { "devTools", "Developer Tools", Kind::devTools },
        { "history", "Show All History", Kind::history },
        { "settings", "Settings\xe2\x80\xa6", Kind::settings },
        { "about", "About Velder", std::nullopt },
        { "checkForUpdates", "Check for Updates\xe2\x80\xa6", std::nullopt },
        { "quit", "Quit Velder", std::nullopt, "q", command, true },
        { "undo", "Undo", std::nullopt, "z", command },
        { "redo", "Redo", std::nullopt, "z", command | shift },
        { "cut", "Cut", std::nullopt, "x", command },
        { "copy", "Copy", std::nullopt, "c", command },
        { "paste", "Paste", std::nullopt, "v", command },
        { "selectAll", "Select All", std::nullopt, "a", command },
        { "toggleFullScreen", "Enter Full Screen", std::nullopt, "F11", 0, true },
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
