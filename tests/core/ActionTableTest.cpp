// The one table of commands: every menu name resolves, every browser command with a menu has a row, and the
// window's own keys don't shadow the key table's.

#include "core/ActionTable.h"
#include "core/Shortcuts.h"

#include <gtest/gtest.h>
#include <set>
#include <string>

using namespace velder;

TEST(ActionTable, NamesAreUniqueAndEveryBrowserCommandButSelectTabHasARow)
{
    std::set<std::string_view> names;
    for (const ActionRow& row : ActionTable::rows()) {
        EXPECT_TRUE(names.insert(row.name).second) << "twice: " << row.name;
        EXPECT_FALSE(row.label.empty()) << row.name;
        EXPECT_EQ(ActionTable::named(row.name), &row);
        if (row.action) {
            EXPECT_EQ(ActionTable::forAction(*row.action), &row);
            EXPECT_FALSE(row.description.empty()) << row.name << " has no line in the about page's key list";
        }
    }
    for (int kind = static_cast<int>(BrowserAction::Kind::newTab);
         kind <= static_cast<int>(BrowserAction::Kind::settings); ++kind) {
        EXPECT_NE(ActionTable::forAction(static_cast<BrowserAction::Kind>(kind)), nullptr) << kind;
    }
    EXPECT_EQ(ActionTable::forAction(BrowserAction::selectTab(2)), nullptr);
    EXPECT_EQ(ActionTable::named("noSuchCommand"), nullptr);
}

TEST(ActionTable, WindowKeysAreTheirOwnAndNeverTheKeyTables)
{
    using namespace KeyModifier;
    EXPECT_EQ(ActionTable::windowKey("q", command)->name, "quit");
    EXPECT_EQ(ActionTable::windowKey("F11", 0)->name, "toggleFullScreen");
    EXPECT_EQ(ActionTable::windowKey("q", command | shift), nullptr) << "modifiers match exactly";
    EXPECT_EQ(ActionTable::windowKey("c", command), nullptr) << "copy belongs to the focused widget";
    for (const ActionRow& row : ActionTable::rows()) {
        if (row.isWindowKey) {
            EXPECT_EQ(Shortcuts::actionForKey(row.key, row.modifiers), std::nullopt)
                << row.name << "'s key is also in the key table, which would win";
        }
    }
}
