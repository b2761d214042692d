#include "shell/window/UpdateMenuItem.h"

#include "core/NotificationCenter.h"
#include "core/UpdateController.h"
#include "shell/chrome/MenuBuilder.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace velder::UpdateMenuItem {

namespace {

// A section that shows the item, and where; the section is watched weakly and forgotten once it goes.
struct Placed {
    GWeakRef section;
    int position;
};

GMenuItem* newItem()
{
    return g_menu_item_new(UpdateController::shared().menuLabel().c_str(), "win.checkForUpdates");
}

std::vector<std::unique_ptr<Placed>>& placed();

// Forgets the sections that have gone; with `relabel`, puts the item anew into the others.
void sweep(bool relabel)
{
    std::erase_if(placed(), [relabel](const std::unique_ptr<Placed>& each) {
        auto* section = static_cast<GMenu*>(g_weak_ref_get(&each->section));
        if (!section) {
            g_weak_ref_clear(&each->section);
            return true;
        }
        if (relabel) {
            g_menu_remove(section, each->position);
            GMenuItem* item = newItem();
            g_menu_insert_item(section, each->position, item);
            g_object_unref(item);
        }
        g_object_unref(section);
        return false;
    });
}

std::vector<std::unique_ptr<Placed>>& placed()
{
    static std::vector<std::unique_ptr<Placed>> all;
    static NotificationCenter::Token token = NotificationCenter::defaultCenter().addObserver(
        UpdateController::stateDidChangeNotification, [](const Notification&) { sweep(true); });
    return all;
}

} // namespace

void appendTo(MenuBuilder& menu)
{
    sweep(false);
    GMenu* section = menu.current();
    auto entry = std::make_unique<Placed>();
    g_weak_ref_init(&entry->section, section);
    entry->position = g_menu_model_get_n_items(G_MENU_MODEL(section));
    GMenuItem* item = newItem();
    g_menu_append_item(section, item);
    g_object_unref(item);
    placed().push_back(std::move(entry));
}

} // namespace velder::UpdateMenuItem
