#pragma once

#include "core/BrowserAction.h"
#include "glib/GObjectPtr.h"

#include <gio/gio.h>
#include <string_view>

namespace velder {

// Builds the menus of a window, the menu bar's and the popups', from the action table: an item names a
// command of the table by its action name ("win.newTab") and takes its label, unless the menu gives its
// own title. Only a menu that shows keys (the menu bar) shows each command's key; popups show none.
class MenuBuilder {
public:
    explicit MenuBuilder(bool showsKeys = false);

    // Starts a section: the items after it form a group set apart by a line.
    MenuBuilder& section();
    // A command of the action table.
    MenuBuilder& command(std::string_view name, const char* title = nullptr);
    MenuBuilder& command(BrowserAction action, const char* title = nullptr);
    // An item of a window action that carries a value (a link's address, a tab's index); `target` is sunk.
    MenuBuilder& item(const char* title, const char* action, GVariant* target);
    // A place for a widget of the menu's own, added by id once the menu is shown.
    MenuBuilder& custom(const char* id);
    MenuBuilder& submenu(const char* title, MenuBuilder& menu);

    GMenuModel* model() const { return G_MENU_MODEL(m_menu.get()); }
    // Where the next item goes: the current section, or the menu itself before any.
    GMenu* current();
    // The menu (a new reference).
    GObjectPtr<GMenuModel> build() const { return GObjectPtr<GMenuModel>::retain(model()); }

private:
    bool m_showsKeys;
    GObjectPtr<GMenu> m_menu;
    GMenu* m_section = nullptr; // owned by m_menu
};

} // namespace velder
