// The order of a window's tabs and which one is active, through every change a window makes.

#include "core/TabModel.h"

#include <gtest/gtest.h>
#include <string>

using namespace velder;

namespace {

TabModel<std::string> modelOf(std::initializer_list<const char*> names, std::size_t active)
{
    TabModel<std::string> model;
    for (const char* name : names) {
        model.append(name, false);
    }
    model.select(active);
    return model;
}

std::string order(const TabModel<std::string>& model)
{
    std::string text;
    for (const auto& tab : model.tabs()) {
        text += tab;
    }
    return text;
}

} // namespace

TEST(TabModel, ClosingKeepsTheActiveTabUnlessItIsTheOneThatGoes)
{
    struct Row {
        std::size_t active;
        const char* closed;
        const char* left;
        const char* nowActive;
    };
    for (const Row& row : std::initializer_list<Row> {
             { 0, "c", "abd", "a" }, { 3, "b", "acd", "d" }, { 1, "d", "abc", "b" },
             { 2, "c", "abd", "d" }, // the tab now at its place
             { 3, "d", "abc", "c" }, // the last one: the new last
             { 1, "x", "abcd", "b" }, // not here: nothing changes
         }) {
        SCOPED_TRACE(std::string("active ") + std::to_string(row.active) + ", closing " + row.closed);
        auto model = modelOf({ "a", "b", "c", "d" }, row.active);
        EXPECT_EQ(model.remove(row.closed), std::string(row.closed) != "x");
        EXPECT_EQ(order(model), row.left);
        EXPECT_EQ(model.active(), row.nowActive);
    }
    auto single = modelOf({ "a" }, 0);
    single.remove("a");
    EXPECT_TRUE(single.empty());
    EXPECT_EQ(single.active(), std::nullopt);
}

TEST(TabModel, MovingKeepsTheActiveTab)
{
    struct Row {
        std::size_t active, from, to;
        const char* order;
        bool moved;
    };
    for (const Row& row : std::initializer_list<Row> {
             { 1, 1, 3, "acdb", true },
             { 2, 0, 3, "bcda", true },
             { 1, 3, 0, "dabc", true },
             { 0, 1, 2, "acbd", true },
             { 2, 2, 9, "abcd", false },
             { 2, 2, 2, "abcd", false },
         }) {
        SCOPED_TRACE(std::to_string(row.from) + " -> " + std::to_string(row.to));
        auto model = modelOf({ "a", "b", "c", "d" }, row.active);
        std::string active = *model.active();
        EXPECT_EQ(model.move(row.from, row.to), row.moved);
        EXPECT_EQ(order(model), row.order);
        EXPECT_EQ(model.active(), active);
    }
}

TEST(TabModel, AppendingActivatesWhenAskedOrWhenFirst)
{
    TabModel<std::string> model;
    EXPECT_EQ(model.append("a", false), 0u);
    EXPECT_EQ(model.active(), "a") << "the first tab is active whatever was asked";
    model.append("b", false);
    EXPECT_EQ(model.active(), "a");
    model.append("c", true);
    EXPECT_EQ(model.active(), "c");
    EXPECT_FALSE(model.select(3));
    EXPECT_EQ(model.active(), "c");
    EXPECT_EQ(model.nextIndex(), 0u) << "next wraps round";
    model.select(0);
    EXPECT_EQ(model.previousIndex(), 2u) << "previous wraps round";
}
