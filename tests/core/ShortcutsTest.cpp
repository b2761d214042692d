#include "core/Shortcuts.h"

#include <gtest/gtest.h>
#include <map>
#include <set>

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

std::vector<BrowserAction> everyAction()
{
    std::vector<BrowserAction> actions;
    for (int kind = static_cast<int>(Kind::newTab); kind <= static_cast<int>(Kind::settings); ++kind) {
        actions.push_back(static_cast<Kind>(kind));
    }
    for (int n = 1; n <= 8; ++n) {
        actions.push_back(BrowserAction::selectTab(n));
    }
    return actions;
}

constexpr std::uint32_t ctrl = command;
constexpr std::uint32_t alt = option;

} // namespace

// A key does the same thing whether the focus is in the chrome or in a page, and no row hides another.
TEST(Shortcuts, EveryRowActsTheSameFromTheWindowAndFromAPage)
{
    std::set<std::pair<std::string, std::uint32_t>> keys;
    std::map<std::pair<std::int32_t, std::uint32_t>, std::string> codes;
    for (const auto& row : Shortcuts::bindings()) {
        SCOPED_TRACE(row.key + " " + std::to_string(row.modifiers));
        EXPECT_TRUE(keys.insert({ row.key, row.modifiers }).second) << "two rows share a key";
        auto [code, fresh] = codes.emplace(std::pair { row.windowsKeyCode, row.modifiers }, describe(row.action));
        EXPECT_TRUE(fresh || code->second == describe(row.action)) << "one engine key, two actions";
        EXPECT_EQ(row.modifiers & control, 0u) << "Ctrl is the command flag on Linux";

        EXPECT_EQ(
            describe(Shortcuts::actionForWindowsKeyCode(row.windowsKeyCode, row.modifiers)), describe(row.action));
        // The window leaves Escape to the focused widget; a page's Escape stops the load.
        EXPECT_EQ(describe(Shortcuts::actionForKey(row.key, row.modifiers)),
            describe(row.key == "Escape" ? std::nullopt : std::optional(row.action)));
    }
}

TEST(Shortcuts, EveryActionShowsOneKeyInTheMenuThatPerformsIt)
{
    for (BrowserAction action : everyAction()) {
        SCOPED_TRACE(describe(action));
        auto primaries = std::count_if(Shortcuts::bindings().begin(), Shortcuts::bindings().end(),
            [&](const KeyBinding& row) { return row.isPrimary && row.action == action; });
        EXPECT_EQ(primaries, 1);
        auto key = Shortcuts::menuKeyEquivalent(action);
        ASSERT_TRUE(key);
        EXPECT_EQ(describe(Shortcuts::actionForKey(key->first, key->second)), describe(action));
    }
    EXPECT_EQ(Shortcuts::menuKeyEquivalent(BrowserAction::selectTab(9)), std::nullopt);
}

TEST(Shortcuts, KeyEventsMatchByTheRulesOfEachPath)
{
    struct Case {
        const char* key;
        std::uint32_t flags;
        std::optional<BrowserAction> action;
    };
    for (const Case& c : std::vector<Case> {
             { "T", ctrl | shift, Kind::reopenClosedTab }, // a letter arrives in its shifted case
             { "+", ctrl | shift, Kind::zoomIn }, // "+" is itself shifted on most layouts
             { "=", ctrl | shift, std::nullopt },
             { "w", ctrl | alt, std::nullopt }, // a modifier too many
             { "ISO_Left_Tab", ctrl | shift, Kind::prevTab },
             { "F3", shift, Kind::findPrev }, // function keys need no Ctrl or Alt
             { "F11", 0, std::nullopt },
             { "t", shift, std::nullopt }, // typing stays with the focused widget
             { "", ctrl, std::nullopt },
             { "q", ctrl, std::nullopt },
         }) {
        SCOPED_TRACE(std::string(c.key) + " flags " + std::to_string(c.flags));
        EXPECT_EQ(describe(Shortcuts::actionForKey(c.key, c.flags)), describe(c.action));
    }

    struct EngineCase {
        std::int32_t code;
        std::uint32_t modifiers;
        std::optional<BrowserAction> action;
    };
    for (const EngineCase& c : std::vector<EngineCase> {
             { 187, command | shift, Kind::zoomIn },
             { 109, command, Kind::zoomOut }, // the keypad's minus
             { 27, shift, std::nullopt },
             { 9, control, std::nullopt }, // the control flag alone is no Ctrl
             { 84, command | option, std::nullopt },
             { 84, 0, std::nullopt },
         }) {
        SCOPED_TRACE(std::to_string(c.code) + " modifiers " + std::to_string(c.modifiers));
        EXPECT_EQ(describe(Shortcuts::actionForWindowsKeyCode(c.code, c.modifiers)), describe(c.action));
    }
}
