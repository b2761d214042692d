#include "WidgetTestSupport.h"

#include "shell/chrome/PopupMenu.h"
#include "shell/chrome/TabSlot.h"
#include "shell/chrome/TabStrip.h"

#include <algorithm>

namespace velder::test {
namespace {

// Slots share what the strip leaves them, 58 to 200 wide; the + button follows the last slot, or stops at
// the strip's end when the slots run past it.
TEST(TabStripLayout, SlotsShareTheStripAndClipUnderThePlusButton)
{
    struct Row {
        double stripWidth, inset;
        std::size_t count;
        double width, plusX;
    };
    const Row rows[] = {
        { 1200, 12, 0, 200, 14 }, // no tabs: + right after the inset
        { 1200, 12, 1, 200, 214 }, // one tab never stretches past 200
        { 600, 80, 3, 484.0 / 3, 564 }, // a wider inset leaves less
        { 800, 12, 16, 58, 764 }, // at 16 tabs the slots clip under +
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.stripWidth << " wide, inset " << row.inset << ", " << row.count);
        double width = TabStrip::slotWidth(row.stripWidth, row.inset, row.count);
        EXPECT_DOUBLE_EQ(width, row.width);
        EXPECT_DOUBLE_EQ(TabStrip::newTabButtonX(row.stripWidth, row.inset, width, row.count), row.plusX);
    }
    // A slot too narrow for its close button shows it only when hovered or active.
    EXPECT_TRUE(TabSlot::showsCloseButton(46, false, false));
    EXPECT_FALSE(TabSlot::showsCloseButton(45.5, false, false));
    EXPECT_TRUE(TabSlot::showsCloseButton(30, true, false));
    EXPECT_TRUE(TabSlot::showsCloseButton(30, false, true));
}

// A strip wired the way the window wires it: reorders move the titles, then come back through setTabs.
class TabStripTest : public WidgetTest {
protected:
    void SetUp() override
    {
        WidgetTest::SetUp();
        strip = std::make_unique<TabStrip>();
        strip->onSelect = [this](int index) { selected.push_back(index); };
        strip->onClose = [this](int index) { closed.push_back(index); };
        strip->onReorder = [this](int from, int to) {
            reorders.emplace_back(from, to);
            auto items = strip->items();
            TabStrip::Item moved = items[from];
            items.erase(items.begin() + from);
            items.insert(items.begin() + to, moved);
            strip->setTabs(items, to);
        };
    }

    void setTitles(const std::vector<std::string>& titles, int active)
    {
        std::vector<TabStrip::Item> items;
        for (const auto& title : titles) {
            items.push_back({ title });
        }
        strip->setTabs(items, active);
    }

    std::vector<std::string> titles() const
    {
        std::vector<std::string> result;
        for (std::size_t i = 0; i < strip->slotCount(); ++i) {
            result.push_back(strip->slot(i).title());
        }
        return result;
    }

    std::vector<int> selected;
    std::vector<int> closed;
    std::vector<std::pair<int, int>> reorders;
    std::unique_ptr<TabStrip> strip; // last: it goes before what its callbacks write to
};

TEST_F(TabStripTest, SetTabsReusesSlotsAndClampsTheActiveIndex)
{
    struct Row {
        std::vector<std::string> titles;
        int active;
        int expectedActive;
    };
    const Row rows[] = {
        { { "A", "B", "C", "D", "E" }, 1, 1 },
        { { "A", "B", "C" }, 7, 2 },
        { { "A", "B" }, -4, 0 },
        { {}, 2, 0 },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.titles.size() << " tabs, active " << row.active);
        setTitles(row.titles, row.active);
        EXPECT_EQ(strip->activeIndex(), row.expectedActive);
        ASSERT_EQ(strip->slotCount(), row.titles.size());
        EXPECT_EQ(titles(), row.titles);
        for (std::size_t i = 0; i < strip->slotCount(); ++i) {
            TabSlot& slot = strip->slot(i);
            EXPECT_EQ(slot.index(), static_cast<int>(i));
            EXPECT_EQ(slot.isActive(), static_cast<int>(i) == row.expectedActive);
        }
    }
}

struct DragCase {
    const char* name;
    int pressedSlot;
    double pressX;
    std::vector<double> moves;
    std::vector<std::pair<int, int>> reorders;
    std::optional<int> dragIndex; // after the last move
    std::optional<double> draggedSlotX; // where the dragged slot stands after the last move
    std::vector<std::string> titles; // after the release
};

TEST_F(TabStripTest, PressSelectsAndDragReordersLive)
{
    // 1000 wide, inset 12: four slots of 200, slot i from 12 + 200 i.
    const DragCase cases[] = {
        { "a click without movement", 1, 300, {}, {}, std::nullopt, std::nullopt, { "A", "B", "C", "D" } },
        { "a shake within 6 pixels", 1, 300, { 304, 306, 294 }, {}, std::nullopt, std::nullopt,
            { "A", "B", "C", "D" } },
        { "past 6 pixels, still over its own slot", 1, 300, { 307 }, {}, 1, 219, { "A", "B", "C", "D" } },
        { "into the next slot", 1, 300, { 307, 420 }, { { 1, 2 } }, 2, 332, { "A", "C", "B", "D" } },
        { "past the last slot", 1, 300, { 900, 2000 }, { { 1, 3 } }, 3, 612, { "A", "C", "D", "B" } },
        { "left of the inset", 2, 500, { 480, 0 }, { { 2, 0 } }, 0, 12, { "C", "A", "B", "D" } },
        { "there and back", 1, 300, { 420, 300 }, { { 1, 2 }, { 2, 1 } }, 1, 212, { "A", "B", "C", "D" } },
    };
    setTitles({ "A", "B", "C", "D" }, 0);
    strip->beginPress(1, 300);
    strip->dragPointer(900);
    strip->endPress();
    EXPECT_EQ(selected, std::vector<int> { 1 });
    EXPECT_TRUE(reorders.empty()) << "without a window a press only selects";
    host(strip->widget(), 1000, 28);
    for (const DragCase& row : cases) {
        SCOPED_TRACE(row.name);
        setTitles({ "A", "B", "C", "D" }, 0);
        selected.clear();
        reorders.clear();
        strip->beginPress(row.pressedSlot, row.pressX);
        for (double x : row.moves) {
            strip->dragPointer(x);
        }
        EXPECT_EQ(selected, std::vector<int> { row.pressedSlot }) << "the press selects at once";
        EXPECT_EQ(reorders, row.reorders);
        EXPECT_EQ(strip->dragIndex(), row.dragIndex);
        if (row.draggedSlotX && row.dragIndex) {
            EXPECT_DOUBLE_EQ(strip->slotX(*row.dragIndex), *row.draggedSlotX);
        }
        strip->endPress();
        EXPECT_EQ(strip->dragIndex(), std::nullopt);
        EXPECT_EQ(titles(), row.titles);
    }

    // The dragged slot is laid out under the pointer, and snaps back to its place when let go.
    strip->beginPress(0, 100);
    strip->dragPointer(150);
    settle(strip->widget());
    graphene_rect_t frame;
    ASSERT_TRUE(gtk_widget_compute_bounds(strip->slot(0).widget(), strip->widget(), &frame));
    EXPECT_EQ(frame.origin.x, 62);
    EXPECT_EQ(frame.size.width, 199);
    strip->endPress();
    settle(strip->widget());
    ASSERT_TRUE(gtk_widget_compute_bounds(strip->slot(0).widget(), strip->widget(), &frame));
    EXPECT_EQ(frame.origin.x, 12);
}

TEST_F(TabStripTest, ButtonsCloseOpenAndAskForTheTabsMenu)
{
    host(strip->widget(), 1000, 28);
    int newTabs = 0;
    strip->onNewTab = [&] { ++newTabs; };
    std::vector<int> asked;
    strip->onContextMenu = [&](int index) {
        asked.push_back(index);
        if (index == 2) {
            return GObjectPtr<GMenuModel>();
        }
        auto menu = GObjectPtr<GMenu>::adopt(g_menu_new());
        g_menu_append(menu.get(), "Reload", "win.tabMenuReload");
        return GObjectPtr<GMenuModel>::adopt(G_MENU_MODEL(menu.release()));
    };
    setTitles({ "A", "B", "C" }, 0);
    settle(strip->widget());

    TabSlot& background = strip->slot(2);
    background.pointerEntered();
    background.middleButtonReleased(30, 10);
    EXPECT_EQ(closed, std::vector<int> { 2 }) << "a hovered background tab closes by the middle button";
    background.middleButtonReleased(-5, 10);
    background.middleButtonReleased(30, 40);
    EXPECT_EQ(closed.size(), 1u) << "released outside the slot, nothing closes";
    ChromeButton& close = strip->slot(1).closeButton();
    close.press();
    close.release(5, 5);
    EXPECT_EQ(closed, (std::vector<int> { 2, 1 }));

    strip->newTabButton().press();
    strip->newTabButton().release(10, 10);
    EXPECT_EQ(newTabs, 1);

    EXPECT_TRUE(strip->slot(1).openContextMenu(40, 12));
    EXPECT_NE(PopupMenu::openMenu(strip->slot(1).widget()), nullptr);
    EXPECT_FALSE(strip->slot(2).openContextMenu(40, 12));
    EXPECT_EQ(PopupMenu::openMenu(strip->slot(2).widget()), nullptr);
    EXPECT_EQ(asked, (std::vector<int> { 1, 2 }));
}

TEST_F(TabStripTest, BarePartsAreLeftToTheWindowHandle)
{
    GtkWidget* handle = gtk_window_handle_new();
    gtk_window_handle_set_child(GTK_WINDOW_HANDLE(handle), strip->widget());
    hostIn(handle, strip->widget(), 1000, 28);
    setTitles({ "A", "B" }, 0);
    settle(strip->widget());
    auto ownerAt = [&](double x) {
        GtkWidget* picked = gtk_widget_pick(handle, x, 14, GTK_PICK_DEFAULT);
        // The slot's or button's own widget, whatever inner part was hit.
        while (picked && gtk_widget_get_parent(picked) != strip->widget() && picked != strip->widget()) {
            picked = gtk_widget_get_parent(picked);
        }
        return picked;
    };
    EXPECT_EQ(ownerAt(5), strip->widget()) << "left of the first slot";
    EXPECT_EQ(ownerAt(100), strip->slot(0).widget());
    EXPECT_EQ(ownerAt(300), strip->slot(1).widget());
    EXPECT_EQ(ownerAt(430), strip->newTabButton().widget());
    EXPECT_EQ(ownerAt(700), strip->widget()) << "past the new-tab button";
    // A press on the strip itself meets no gesture of its own (only the wheel's) and goes on up to the handle.
    auto controllers = GObjectPtr<GListModel>::adopt(gtk_widget_observe_controllers(strip->widget()));
    for (guint i = 0; i < g_list_model_get_n_items(controllers.get()); ++i) {
        auto controller = GObjectPtr<GObject>::adopt(G_OBJECT(g_list_model_get_item(controllers.get(), i)));
        EXPECT_FALSE(GTK_IS_GESTURE(controller.get())) << G_OBJECT_TYPE_NAME(controller.get());
    }
}

// (600 - 48) / 3 = 184: slots at 12, 196 and 380, 183 wide, the body from y 3 to 25, the title from 10 in.
TEST_F(TabStripTest, DrawsTheBodiesAndReadableTitles)
{
    const Color gunmetal = Color::fromHex(0x282828);
    const Color charcoal = Color::fromHex(0x404040);
    const Color magenta = Color::fromHex(0xC000C0);
    const Color grey = Color::fromHex(0x808080);
    const Color red = Color::fromHex(0xE05252);
    const Color black = Color::fromHex(0x000000);
    const Color white = Color::fromHex(0xFFFFFF);
    host(strip->widget(), 600, 28);
    setTitles({ "MMMMMMMM", "MMMMMMMM", "MMMMMMMM" }, 1);
    strip->slot(2).pointerEntered();
    setColors("cyan", "magenta", "grey", "charcoal", "gunmetal");
    Rendering image = render(strip->widget());
    EXPECT_TRUE(pixelIs(image.at(5, 14), gunmetal)) << "the strip's own background";
    EXPECT_TRUE(pixelIs(image.at(150, 5), gunmetal)) << "a plain slot has no body";
    EXPECT_TRUE(pixelIs(image.at(300, 5), charcoal)) << "the active body is the field colour";
    EXPECT_TRUE(pixelIs(image.at(300, 3), magenta)) << "with the highlight colour round it";
    // Gunmetal (40) lifted by 0.18: 40 + 215 * 0.18 = 79.
    EXPECT_TRUE(pixelIs(image.at(480, 5), rgb(79, 79, 79))) << "the hovered slot is shaded";

    // The active title is the text colour on the field, the others the passive colour on the border.
    struct Row {
        const char* text;
        const char* passive;
        Color activeTitle;
        Color plainTitle;
    };
    const Row rows[] = {
        { "cyan", "grey", black, grey }, // cyan on white becomes black; grey on gunmetal stays
        { "red", "charcoal", red, white }, // red stays on white; charcoal on gunmetal doesn't
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.text << " on white, " << row.passive << " on gunmetal");
        setColors(row.text, "magenta", row.passive, "white", "gunmetal");
        Rendering titles = render(strip->widget());
        EXPECT_TRUE(pixelIs(titles.farthestFrom(white, 206, 6, 100, 16), row.activeTitle, 40));
        EXPECT_TRUE(pixelIs(titles.farthestFrom(gunmetal, 22, 6, 100, 16), row.plainTitle, 40));
    }
}

} // namespace
} // namespace velder::test
