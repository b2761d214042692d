// The main menu: its order, titles and shown keys, and the window actions its items name.

#include "ShellTest.h"
#include "WidgetTestSupport.h"

#include "bridge/VLDContextMenuInfo.h"
#include "core/UpdateController.h"
#include "shell/tab/BrowserTab.h"
#include "shell/window/MainWindow.h"
#include "shell/window/MenuBar.h"
#include "shell/window/WindowMenus.h"

using namespace velder;
using namespace velder::test;

namespace {

class MenuBarTest : public ShellTest { };

} // namespace

TEST_F(MenuBarTest, EachItemShowsItsPrimaryKey)
{
    GMenuModel* bar = MenuBar::mainMenu();
    struct Row {
        int menu;
        std::string label, action, accel;
    };
    std::vector<Row> rows = {
        { 0, "Quit Velder", "win.quit", "<Control>q" }, // a key of the window's own
        { 1, "Close Window", "win.closeWindow", "<Control><Shift>w" },
        { 3, "Zoom In", "win.zoomIn", "<Control>plus" }, // the primary of two rows
        { 4, "Back", "win.back", "<Control>bracketleft" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.label);
        GMenuModel* menu = g_menu_model_get_item_link(bar, row.menu, G_MENU_LINK_SUBMENU);
        auto items = itemsOf(menu, true);
        auto found = std::find_if(items.begin(), items.end(), [&](auto& item) { return item.label == row.label; });
        ASSERT_NE(found, items.end());
        EXPECT_EQ(found->action, row.action);
        EXPECT_EQ(found->accel, row.accel) << "the menu shows the primary key only";
        g_object_unref(menu);
    }
    g_object_unref(bar);
}

// Every item of the menu bar and of the popup menus runs an action of the window; only the bar shows keys.
TEST_F(MenuBarTest, ItemsNameTheWindowsActionsAndFollowItsState)
{
    auto window = MainWindow::create(WindowFrame::defaultFrame(), false, false);
    WindowRegistry::shared().windows.push_back(window);
    window->install(BrowserTab::create("https://a.example/", false), true);
    GActionGroup* actions = window->actions();
    VLDContextMenuInfo onLink;
    onLink.linkURL = "https://b.example/";
    onLink.selectionText = "words";
    std::vector<GObjectPtr<GMenuModel>> menus;
    menus.push_back(GObjectPtr<GMenuModel>::adopt(MenuBar::mainMenu()));
    menus.push_back(WindowMenus::wordmarkMenu());
    menus.push_back(WindowMenus::tabMenu(*window, 0));
    menus.push_back(WindowMenus::pageMenu(onLink));
    for (const auto& menu : menus) {
        for (const auto& item : itemsOf(menu.get(), true)) {
            SCOPED_TRACE(item.label);
            if (menu.get() != menus[0].get()) {
                EXPECT_TRUE(item.accel.empty()) << "only the menu bar shows keys";
            }
            ASSERT_TRUE(item.action.starts_with("win.")) << item.action;
            EXPECT_TRUE(g_action_group_has_action(actions, item.action.c_str() + 4));
        }
    }
    EXPECT_EQ(itemsOf(menus[3].get()).back().label, "Reload");
    VLDContextMenuInfo inField;
    inField.isEditable = true;
    EXPECT_EQ(WindowMenus::pageMenu(inField).get(), nullptr) << "a text field keeps the engine's own menu";

    // Items are enabled as the window's state allows.
    EXPECT_FALSE(g_action_group_get_action_enabled(actions, "back"));
    EXPECT_FALSE(g_action_group_get_action_enabled(actions, "stop"));
    EXPECT_FALSE(g_action_group_get_action_enabled(actions, "reopenClosedTab"));
    EXPECT_TRUE(g_action_group_get_action_enabled(actions, "newTab"));
    fakeViewOf(*window->tabs()[0])->reportLoading(true);
    EXPECT_TRUE(g_action_group_get_action_enabled(actions, "stop"));

    // A menu command runs through the window like its key; a disabled one doesn't run.
    g_action_group_activate_action(actions, "stop", nullptr);
    EXPECT_EQ(fakeViewOf(*window->tabs()[0])->commands.back(), "stopLoading");
    g_action_group_activate_action(actions, "newTab", nullptr);
    ASSERT_EQ(window->tabs().size(), 2u);
    EXPECT_FALSE(g_action_group_get_action_enabled(actions, "stop"));
    g_action_group_activate_action(actions, "stop", nullptr);
    auto& commands = fakeViewOf(*window->tabs()[1])->commands;
    EXPECT_EQ(std::count(commands.begin(), commands.end(), "stopLoading"), 0);
}

// The update item of the menu bar and the wordmark's menu reads the controller's label as it changes, and
// can be chosen only while nothing is going on.
TEST_F(MenuBarTest, TheUpdateItemFollowsTheController)
{
    auto controller = std::make_shared<UpdateController>();
    UpdateController::setShared(controller);
    auto window = windowWith({});
    auto bar = GObjectPtr<GMenuModel>::adopt(MenuBar::mainMenu());
    auto wordmark = WindowMenus::wordmarkMenu();
    auto labels = [&] {
        std::vector<std::string> found;
        for (GMenuModel* menu : { bar.get(), wordmark.get() }) {
            for (const auto& item : itemsOf(menu, true)) {
                if (item.action == "win.checkForUpdates") {
                    found.push_back(item.label);
                }
            }
        }
        return found;
    };
    auto enabled = [&] { return g_action_group_get_action_enabled(window->actions(), "checkForUpdates"); };
    EXPECT_EQ(labels(), (std::vector<std::string> { "Check for Updates…", "Check for Updates…" }));
    EXPECT_TRUE(enabled());
    controller->stage("0.2.0", [](UpdateChoice) {});
    EXPECT_EQ(labels(), (std::vector<std::string> { "Update ready — v0.2.0", "Update ready — v0.2.0" }));
    EXPECT_FALSE(enabled());
    UpdateController::setShared(nullptr);
}
