#include "core/Shortcuts.h"

#include <gtest/gtest.h>

using namespace velder;
using namespace velder::KeyModifier;
using Kind = BrowserAction::Kind;

namespace {

std::string describe(std::optional<BrowserAction> action)
{
    if (!action) {
        return "none";
    }
    return std::to_string(static_cast<int>(action->kind)) + "/" + std::to_string(action->tab);
}

constexpr std::uint32_t ctrl = command;
constexpr std::uint32_t alt = option;

} // namespace

TEST(Shortcuts, TableHoldsTheCommonRowsThenTheLinuxOnes)
{
    const auto& rows = Shortcuts::bindings();
    ASSERT_EQ(rows.size(), 39u + 14u);
    // Spot checks at the seams: the first row, the escape row, the digits, the first and last Linux rows.
    EXPECT_EQ(rows[0].action, BrowserAction(Kind::newTab));
    EXPECT_EQ(rows[18].key, "Escape");
    EXPECT_EQ(rows[18].modifiers, 0u);
    EXPECT_FALSE(rows[18].isPrimary);
    EXPECT_EQ(rows[30].action, BrowserAction(Kind::settings));
    for (int n = 1; n <= 8; ++n) {
        SCOPED_TRACE(n);
        const auto& row = rows[30 + static_cast<size_t>(n)];
        EXPECT_EQ(row.action, BrowserAction::selectTab(n));
        EXPECT_EQ(row.key, std::string(1, static_cast<char>('0' + n)));
        EXPECT_EQ(row.windowsKeyCode, 48 + n);
    }
    EXPECT_EQ(rows[39].key, "F5");
    EXPECT_EQ(rows[52].action, BrowserAction(Kind::history));
    for (size_t i = 39; i < rows.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_FALSE(rows[i].isPrimary) << "the menu shows the common keys only";
        EXPECT_EQ(rows[i].modifiers & control, 0u);
    }
    for (const auto& row : rows) {
        SCOPED_TRACE(row.key);
        EXPECT_EQ(row.modifiers & control, 0u) << "Ctrl is the command flag on Linux";
        if (row.key.size() == 1 && row.key[0] >= 'a' && row.key[0] <= 'z') {
            EXPECT_EQ(row.windowsKeyCode, row.key[0] - 'a' + 'A');
        }
    }
}

TEST(Shortcuts, MenuShowsTheFirstPrimaryKey)
{
    struct Case {
        BrowserAction action;
        std::optional<std::pair<std::string, std::uint32_t>> key;
    };
    for (const Case& c : std::vector<Case> {
             { Kind::nextTab, std::pair { std::string("Tab"), ctrl } },
             { Kind::stop, std::pair { std::string("."), ctrl } },
             { Kind::zoomIn, std::pair { std::string("+"), ctrl } },
             { Kind::home, std::pair { std::string("h"), ctrl | shift } },
             { Kind::history, std::pair { std::string("y"), ctrl } },
             { BrowserAction::selectTab(3), std::pair { std::string("3"), ctrl } },
             { BrowserAction::selectTab(9), std::nullopt },
         }) {
        SCOPED_TRACE(describe(c.action));
        EXPECT_EQ(Shortcuts::menuKeyEquivalent(c.action), c.key);
    }
}

TEST(Shortcuts, WindowKeyPath)
{
    struct Case {
        const char* key;
        std::uint32_t flags;
        std::optional<BrowserAction> action;
    };
    for (const Case& c : std::vector<Case> {
             { "t", ctrl, Kind::newTab },
             { "T", ctrl | shift, Kind::reopenClosedTab },
             { "w", ctrl, Kind::closeTab },
             { "w", ctrl | shift, Kind::closeWindow },
             { "w", ctrl | alt, std::nullopt },
             { "+", ctrl, Kind::zoomIn },
             { "+", ctrl | shift, Kind::zoomIn }, // the "+" row ignores shift
             { "=", ctrl, Kind::zoomIn },
             { "=", ctrl | shift, std::nullopt },
             { "-", ctrl, Kind::zoomOut },
             { "Right", ctrl | alt, Kind::nextTab },
             { "Right", ctrl, Kind::forward },
             { "Left", alt, Kind::back },
             { "Right", alt, Kind::forward },
             { "Home", alt, Kind::home },
             { "Tab", ctrl, Kind::nextTab },
             { "Tab", ctrl | shift, Kind::prevTab },
             { "ISO_Left_Tab", ctrl | shift, Kind::prevTab },
             { "Page_Down", ctrl, Kind::nextTab },
             { "Page_Up", ctrl, Kind::prevTab },
             { "9", ctrl, Kind::selectLastTab },
             { "1", ctrl, BrowserAction::selectTab(1) },
             { "8", ctrl, BrowserAction::selectTab(8) },
             { "h", ctrl, Kind::history },
             { "h", ctrl | shift, Kind::home },
             { "i", ctrl | alt, Kind::devTools },
             { "i", ctrl | shift, Kind::devTools },
             { "d", alt, Kind::focusAddressBar },
             { "l", ctrl, Kind::focusAddressBar },
             // Function keys need no modifier; other keys without Ctrl or Alt stay with the focused widget.
             { "F5", 0, Kind::reload },
             { "F5", ctrl, Kind::hardReload },
             { "F6", 0, Kind::focusAddressBar },
             { "F3", 0, Kind::findNext },
             { "F3", shift, Kind::findPrev },
             { "F12", 0, Kind::devTools },
             { "F11", 0, std::nullopt },
             { "Escape", 0, std::nullopt },
             { "t", 0, std::nullopt },
             { "t", shift, std::nullopt },
             { "", ctrl, std::nullopt },
             { "q", ctrl, std::nullopt },
         }) {
        SCOPED_TRACE(std::string(c.key) + " flags " + std::to_string(c.flags));
        EXPECT_EQ(describe(Shortcuts::actionForKey(c.key, c.flags)), describe(c.action));
    }
}

TEST(Shortcuts, EngineKeyPath)
{
    // The key code with the key table's own modifier flags, as the engine's key hook reports them.
    struct Case {
        std::int32_t code;
        std::uint32_t modifiers;
        std::optional<BrowserAction> action;
    };
    for (const Case& c : std::vector<Case> {
             { 84, command, Kind::newTab },
             { 84, command | shift, Kind::reopenClosedTab },
             { 187, command, Kind::zoomIn },
             { 187, command | shift, Kind::zoomIn },
             { 189, command, Kind::zoomOut },
             { 27, 0, Kind::stop }, // a bare escape in a page reaches stop
             { 27, shift, std::nullopt },
             { 39, command | option, Kind::nextTab },
             { 39, command, Kind::forward },
             { 37, option, Kind::back },
             { 9, command, Kind::nextTab },
             { 9, command | shift, Kind::prevTab },
             { 9, control, std::nullopt }, // the control bit alone is no Ctrl here
             { 116, 0, Kind::reload },
             { 116, command, Kind::hardReload },
             { 114, shift, Kind::findPrev },
             { 73, command | shift, Kind::devTools },
             { 72, command, Kind::history },
             { 72, command | shift, Kind::home },
             { 57, command, Kind::selectLastTab },
             { 50, command, BrowserAction::selectTab(2) },
             { 84, 0, std::nullopt },
             { 84, command | option, std::nullopt },
         }) {
        SCOPED_TRACE(std::to_string(c.code) + " modifiers " + std::to_string(c.modifiers));
        EXPECT_EQ(describe(Shortcuts::actionForWindowsKeyCode(c.code, c.modifiers)), describe(c.action));
    }
}
