#include "shell/window/WindowMenus.h"

#include "bridge/VLDContextMenuInfo.h"
#include "core/AppInfo.h"
#include "glib/MainLoop.h"
#include "shell/chrome/MenuBuilder.h"
#include "shell/chrome/PopupMenu.h"
#include "shell/window/MainWindow.h"
#include "shell/window/UpdateMenuItem.h"
#include "shell/window/WindowCommands.h"

#include <gtk/gtk.h>

namespace velder::WindowMenus {

namespace {

using Kind = BrowserAction::Kind;

// Where the pointer is, in the anchor's coordinates.
graphene_point_t pointerIn(GtkWindow* window, GtkWidget* anchor)
{
    double x = 0;
    double y = 0;
    GdkSurface* surface = gtk_native_get_surface(GTK_NATIVE(window));
    GdkSeat* seat = gdk_display_get_default_seat(gdk_display_get_default());
    if (surface && seat && gdk_seat_get_pointer(seat)) {
        gdk_surface_get_device_position(surface, gdk_seat_get_pointer(seat), &x, &y, nullptr);
    }
    double surfaceX = 0;
    double surfaceY = 0;
    gtk_native_get_surface_transform(GTK_NATIVE(window), &surfaceX, &surfaceY);
    graphene_point_t point = GRAPHENE_POINT_INIT(static_cast<float>(x - surfaceX), static_cast<float>(y - surfaceY));
    graphene_point_t inAnchor = point;
    (void)!gtk_widget_compute_point(GTK_WIDGET(window), anchor, &point, &inAnchor);
    return inAnchor;
}

} // namespace

GObjectPtr<GMenuModel> wordmarkMenu()
{
    MenuBuilder menu;
    menu.section().command(Kind::newWindow).command(Kind::newPrivateWindow);
    std::string about = "About Velder " + AppInfo::version();
    menu.section()
        .command(Kind::settings, "Settings")
        .command(Kind::history, "History")
        .command("about", about.c_str());
    UpdateMenuItem::appendTo(menu.section());
    menu.section().command("quit");
    return menu.build();
}

GObjectPtr<GMenuModel> tabMenu(const MainWindow& window, std::size_t index)
{
    std::size_t count = window.tabs().size();
    if (index >= count) {
        return nullptr;
    }
    MenuBuilder menu;
    auto entry = [&](const char* title, const char* action, bool enabled) {
        if (enabled) {
            menu.item(title, action, g_variant_new_uint32(static_cast<guint32>(index)));
        } else {
            menu.item(title, "win.unavailable", nullptr);
        }
    };
    menu.section();
    entry("Reload", "win.tabReload", true);
    entry("Duplicate", "win.tabDuplicate", true);
    menu.section();
    entry("Close", "win.tabClose", true);
    entry("Close Others", "win.tabCloseOthers", count >= 2);
    entry("Close to the Right", "win.tabCloseToRight", index + 1 < count);
    return menu.build();
}

GObjectPtr<GMenuModel> pageMenu(const VLDContextMenuInfo& info)
{
    if (info.isEditable) {
        return nullptr; // text fields keep the engine's own menu: cut, copy, paste
    }
    MenuBuilder menu;
    auto entry = [&](const char* title, const char* action, const std::string& value) {
        menu.item(title, action, g_variant_new_string(value.c_str()));
    };
    if (!info.linkURL.empty()) {
        menu.section();
        entry("Open Link in New Tab", "win.contextOpenLinkInNewTab", info.linkURL);
        entry("Download Linked File", "win.contextDownloadLink", info.linkURL);
        entry("Copy Link", "win.contextCopy", info.linkURL);
    }
    if (!info.sourceURL.empty() && info.sourceURL != info.linkURL) {
        menu.section();
        entry("Download Image", "win.contextDownloadLink", info.sourceURL);
        entry("Copy Image Address", "win.contextCopy", info.sourceURL);
    }
    if (!info.selectionText.empty()) {
        menu.section();
        entry("Copy", "win.contextCopy", info.selectionText);
    }
    menu.section().command(Kind::back).command(Kind::forward).command(Kind::reload);
    return menu.build();
}

bool showPageMenu(MainWindow& window, const VLDContextMenuInfo& info)
{
    auto model = pageMenu(info);
    if (!model) {
        return true;
    }
    window.commands().updateStates();
    auto shown = std::make_shared<GObjectPtr<GMenuModel>>(std::move(model));
    MainLoop::post(window.weak_from_this(), [shown](MainWindow& self) {
        graphene_point_t at = pointerIn(self.window(), self.pageMenuAnchor());
        PopupMenu::popup(self.pageMenuAnchor(), shown->get(), at.x, at.y);
    });
    return false;
}

} // namespace velder::WindowMenus
