#include "core/Shortcuts.h"

#include "core/Text.h"

namespace velder::Shortcuts {

namespace {

using Kind = BrowserAction::Kind;
using namespace KeyModifier;

// With the "+" row, shift doesn't count: on most layouts "+" is itself a shifted key.
constexpr std::uint32_t plusMask = command | option | control;
constexpr std::uint32_t exactMask = command | option | control | shift;

std::vector<KeyBinding> makeBindings()
{
    std::vector<KeyBinding> rows {
        { Kind::newTab, "t", command, 84, true },
        { Kind::closeTab, "w", command, 87, true },
        { Kind::closeWindow, "w", command | shift, 87, true },
        { Kind::reopenClosedTab, "t", command | shift, 84, true },
        // Ctrl+Tab stands where other systems use the control key.
        { Kind::nextTab, "Tab", command, 9, true },
        { Kind::nextTab, "Right", command | option, 39, false },
        { Kind::prevTab, "Tab", command | shift, 9, true },
        { Kind::prevTab, "Left", command | option, 37, false },
        { Kind::selectLastTab, "9", command, 57, true },
        { Kind::newWindow, "n", command, 78, true },
        { Kind::newPrivateWindow, "n", command | shift, 78, true },
        { Kind::focusAddressBar, "l", command, 76, true },
        { Kind::find, "f", command, 70, true },
        { Kind::findNext, "g", command, 71, true },
        { Kind::findPrev, "g", command | shift, 71, true },
        { Kind::reload, "r", command, 82, true },
        { Kind::hardReload, "r", command | shift, 82, true },
        { Kind::stop, ".", command, 190, true },
        { Kind::stop, "Escape", 0, 27, false },
        { Kind::back, "[", command, 219, true },
        { Kind::back, "Left", command, 37, false },
        { Kind::forward, "]", command, 221, true },
        { Kind::forward, "Right", command, 39, false },
        { Kind::home, "h", command | shift, 72, true },
        { Kind::zoomIn, "+", command, 187, true },
        { Kind::zoomIn, "=", command, 187, false },
        { Kind::zoomOut, "-", command, 189, true },
        { Kind::zoomReset, "0", command, 48, true },
        { Kind::devTools, "i", command | option, 73, true },
        { Kind::history, "y", command, 89, true },
        { Kind::settings, ",", command, 188, true },
    };
    for (int n = 1; n <= 8; ++n) {
        rows.push_back(
            { BrowserAction::selectTab(n), std::string(1, static_cast<char>('0' + n)), command, 48 + n, true });
    }
    // The keys Linux users bring from other browsers. None is shown in the menu.
    std::vector<KeyBinding> linuxRows {
        { Kind::reload, "F5", 0, 116, false },
        { Kind::hardReload, "F5", command, 116, false },
        { Kind::back, "Left", option, 37, false },
        { Kind::forward, "Right", option, 39, false },
        { Kind::home, "Home", option, 36, false },
        { Kind::focusAddressBar, "d", option, 68, false },
        { Kind::nextTab, "Page_Down", command, 34, false },
        { Kind::prevTab, "Page_Up", command, 33, false },
        { Kind::findNext, "F3", 0, 114, false },
        { Kind::findPrev, "F3", shift, 114, false },
        { Kind::zoomIn, "KP_Add", command, 107, false },
        { Kind::zoomOut, "KP_Subtract", command, 109, false },
        { Kind::zoomReset, "KP_0", command, 96, false },
        { Kind::devTools, "F12", 0, 123, false },
        { Kind::devTools, "i", command | shift, 73, false },
        { Kind::history, "h", command, 72, false },
    };
    rows.insert(rows.end(), linuxRows.begin(), linuxRows.end());
    return rows;
}

bool isFunctionKey(std::string_view key)
{
    if (key.size() < 2 || key.size() > 3 || key[0] != 'F') {
        return false;
    }
    int number = 0;
    for (char c : key.substr(1)) {
        if (c < '0' || c > '9') {
            return false;
        }
        number = number * 10 + (c - '0');
    }
    return key[1] != '0' && number >= 1 && number <= 24;
}

} // namespace

const std::vector<KeyBinding>& bindings()
{
    static const std::vector<KeyBinding> table = makeBindings();
    return table;
}

std::optional<std::pair<std::string, std::uint32_t>> menuKeyEquivalent(BrowserAction action)
{
    for (const auto& binding : bindings()) {
        if (binding.isPrimary && binding.action == action) {
            return std::pair { binding.key, binding.modifiers };
        }
    }
    return std::nullopt;
}

bool modifiersMatch(const KeyBinding& binding, std::uint32_t flags)
{
    std::uint32_t mask = binding.key == "+" ? plusMask : exactMask;
    return (flags & mask) == binding.modifiers;
}

std::optional<BrowserAction> actionForKey(std::string_view key, std::uint32_t flags)
{
    if (key.empty()) {
        return std::nullopt;
    }
    if ((flags & (command | option | control)) == 0 && !isFunctionKey(key)) {
        return std::nullopt;
    }
    // Shift+Tab arrives as its own key name; the table knows it as Tab with shift.
    std::string text = key == "ISO_Left_Tab" ? std::string("Tab") : std::string(key);
    if (text.size() == 1) {
        text[0] = Text::asciiLower(text[0]);
    }
    for (const auto& binding : bindings()) {
        if (binding.key == text && modifiersMatch(binding, flags)) {
            return binding.action;
        }
    }
    return std::nullopt;
}

std::optional<BrowserAction> actionForWindowsKeyCode(std::int32_t code, std::uint32_t flags)
{
    for (const auto& binding : bindings()) {
        if (binding.windowsKeyCode == code && modifiersMatch(binding, flags)) {
            return binding.action;
        }
    }
    return std::nullopt;
}

} // namespace velder::Shortcuts
