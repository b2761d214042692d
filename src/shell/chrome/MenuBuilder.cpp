#include "shell/chrome/MenuBuilder.h"

#include "core/ActionTable.h"
#include "core/Shortcuts.h"
#include "shell/chrome/KeyEvents.h"

#include <string>

namespace velder {

MenuBuilder::MenuBuilder(bool showsKeys)
    : m_showsKeys(showsKeys)
    , m_menu(GObjectPtr<GMenu>::adopt(g_menu_new()))
{
}

MenuBuilder& MenuBuilder::section()
{
    GMenu* group = g_menu_new();
    g_menu_append_section(m_menu.get(), nullptr, G_MENU_MODEL(group));
    g_object_unref(group); // the menu holds it
    m_section = group;
    return *this;
}

GMenu* MenuBuilder::current()
{
    return m_section ? m_section : m_menu.get();
}

MenuBuilder& MenuBuilder::command(std::string_view name, const char* title)
{
    const ActionRow* row = ActionTable::named(name);
    if (!row) {
        return *this;
    }
    std::string label = title ? title : std::string(row->label);
    std::string detailed = "win." + std::string(row->name);
    GMenuItem* item = g_menu_item_new(label.c_str(), detailed.c_str());
    if (m_showsKeys) {
        std::string accelerator;
        if (row->action) {
            if (auto key = Shortcuts::menuKeyEquivalent(*row->action)) {
                accelerator = KeyEvents::accelerator(key->first, key->second);
            }
        } else if (!row->key.empty()) {
            accelerator = KeyEvents::accelerator(std::string(row->key), row->modifiers);
        }
        if (!accelerator.empty()) {
            g_menu_item_set_attribute(item, "accel", "s", accelerator.c_str());
        }
    }
    g_menu_append_item(current(), item);
    g_object_unref(item);
    return *this;
}

MenuBuilder& MenuBuilder::command(BrowserAction action, const char* title)
{
    if (const ActionRow* row = ActionTable::forAction(action)) {
        command(row->name, title);
    }
    return *this;
}

MenuBuilder& MenuBuilder::item(const char* title, const char* action, GVariant* target)
{
    GMenuItem* item = g_menu_item_new(title, nullptr);
    g_menu_item_set_action_and_target_value(item, action, target);
    g_menu_append_item(current(), item);
    g_object_unref(item);
    return *this;
}

MenuBuilder& MenuBuilder::custom(const char* id)
{
    GMenuItem* item = g_menu_item_new(nullptr, nullptr);
    g_menu_item_set_attribute(item, "custom", "s", id);
    g_menu_append_item(current(), item);
    g_object_unref(item);
    return *this;
}

MenuBuilder& MenuBuilder::submenu(const char* title, MenuBuilder& menu)
{
    g_menu_append_submenu(current(), title, menu.model());
    return *this;
}

} // namespace velder
