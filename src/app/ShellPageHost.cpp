#include "app/ShellPageHost.h"

#include "bridge/VLDBrowserView.h"
#include "bridge/VLDEngineRuntime.h"
#include "core/InternalRoute.h"
#include "core/LocationSettings.h"
#include "shell/tab/BrowserTab.h"
#include "shell/window/AppDelegate.h"
#include "shell/window/MainWindow.h"
#include "shell/window/WindowRegistry.h"

namespace velder {

void ShellPageHost::refreshInternalPages(std::optional<std::uint64_t> requestingView)
{
    if (!AppDelegate::shared()) {
        return; // shutting down
    }
    for (const auto& window : WindowRegistry::shared().windows) {
        for (const auto& tab : window->tabs()) {
            if (requestingView && tab->view()->identifier() == *requestingView) {
                continue; // that one takes its redirect
            }
            if (InternalRoutes::parse(tab->url)) {
                tab->view()->reload();
            }
        }
    }
}

void ShellPageHost::clearCookiesAndCache(std::uint64_t requestingView)
{
    if (auto view = VLDBrowserView::viewForIdentifier(requestingView)) {
        view->clearCookiesAndCache();
    }
}

void ShellPageHost::forgetLocationAnswers()
{
    LocationSettings::shared().forgetAll();
}

std::string ShellPageHost::engineVersion() const
{
    return VLDEngineRuntime::engineVersion();
}

std::string ShellPageHost::toolkitVersion() const
{
    return VLDEngineRuntime::toolkitVersion();
}

} // namespace velder
