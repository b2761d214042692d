#include "shell/window/AppDelegate.h"

#include "bridge/VLDBrowserView.h"
#include "core/HistoryStore.h"
#include "core/LocationSettings.h"
#include "core/UpdateController.h"
#include "core/UrlHelper.h"
#include "core/Vault.h"
#include "shell/tab/BrowserTab.h"
#include "shell/window/MainWindow.h"
#include "shell/window/WindowRegistry.h"

#include <algorithm>
#include <gtk/gtk.h>

namespace velder {

namespace {

AppDelegate* sharedDelegate = nullptr;

std::string homepage()
{
    return Vault::shared().snapshot()->settings.homepage;
}

std::string newTabPage(bool isPrivate)
{
    return isPrivate ? "about:blank" : Vault::shared().snapshot()->settings.newTabPage;
}

// What a window asked for opens: the addresses, or the new-tab page without any.
std::vector<std::string> addressesOrNewTab(const LaunchRequest& request, bool isPrivate)
{
    return request.urls.empty() ? std::vector { newTabPage(isPrivate) } : request.urls;
}

// A tab for each address, the first of them active.
void installAll(MainWindow& window, const std::vector<std::string>& urls)
{
    for (std::size_t i = 0; i < urls.size(); ++i) {
        window.install(BrowserTab::create(urls[i], window.isPrivate()), i == 0);
    }
}

} // namespace

double AppDelegate::zoomLevel = 0;

AppDelegate::AppDelegate()
{
    sharedDelegate = this;
}

AppDelegate::~AppDelegate()
{
    if (sharedDelegate == this) {
        sharedDelegate = nullptr;
    }
}

AppDelegate* AppDelegate::shared()
{
    return sharedDelegate;
}

MainWindow* AppDelegate::keyWindow()
{
    for (const auto& window : WindowRegistry::shared().windows) {
        if (gtk_window_is_active(window->window())) {
            return window.get();
        }
    }
    // Without a focused window (a desktop without focus, or the tests' display), the newest one counts.
    auto& windows = WindowRegistry::shared().windows;
    return windows.empty() ? nullptr : windows.back().get();
}

void AppDelegate::applicationDidFinishLaunching(const LaunchRequest& request)
{
    zoomLevel = std::clamp(Vault::shared().snapshot()->currentZoomLevel, -7.0, 9.0);
    LocationSettings::shared().startWatchingTheGlobalSwitch();
    UpdateController::shared().start();
    openFirstWindows(request);
    WindowRegistry::shared().startPeriodicCapture();
}

void AppDelegate::applicationWillTerminate()
{
    WindowRegistry::shared().captureFinalAndStop();
    for (const auto& window : WindowRegistry::shared().windows) {
        window->requestCloseBrowsers();
    }
    Vault::shared().flushNow();
    HistoryStore::shared().flushNow();
}

void AppDelegate::openFirstWindows(const LaunchRequest& request)
{
    // A private window asked for from cold is all that opens: the saved session stays on disk.
    if (request.privateWindow) {
        openWindowWith(addressesOrNewTab(request, true), true, nullptr);
        return;
    }
    if (!request.urls.empty()) {
        std::optional<Rect> frame;
        if (auto shape = WindowRegistry::shared().savedShape()) {
            frame = WindowPlacement::frameFromSession(*shape, WindowFrame::visibleFrames());
        }
        auto window = MainWindow::create(frame.value_or(WindowFrame::defaultFrame()), false, frame.has_value());
        installAll(*window, request.urls);
        WindowRegistry::shared().windows.push_back(window);
        window->makeKeyAndOrderFront();
        return;
    }
    if (request.newWindow) {
        openWindow(newTabPage(false), nullptr);
    } else if (!WindowRegistry::shared().restoreSavedSession()) {
        openWindow(homepage(), nullptr);
    }
}

MainWindow& AppDelegate::openWindow(const std::string& url, const MainWindow* cascadingFrom)
{
    return openWindowWith({ url }, false, cascadingFrom);
}

MainWindow& AppDelegate::openPrivateWindow(const MainWindow* cascadingFrom)
{
    return openWindowWith({ newTabPage(true) }, true, cascadingFrom);
}

MainWindow& AppDelegate::openWindowWith(
    const std::vector<std::string>& urls, bool isPrivate, const MainWindow* cascadingFrom)
{
    const MainWindow* source = cascadingFrom ? cascadingFrom : keyWindow();
    auto window = MainWindow::create(MainWindow::frameCascadingFrom(source), isPrivate, false);
    installAll(*window, urls);
    WindowRegistry::shared().windows.push_back(window);
    window->makeKeyAndOrderFront();
    return *window;
}

void AppDelegate::rememberClosedTab(const std::string& url)
{
    std::string trimmed = url;
    auto blank = [](unsigned char c) { return std::isspace(c) != 0; };
    trimmed.erase(trimmed.begin(), std::find_if_not(trimmed.begin(), trimmed.end(), blank));
    trimmed.erase(std::find_if_not(trimmed.rbegin(), trimmed.rend(), blank).base(), trimmed.end());
    if (trimmed.empty() || g_ascii_strcasecmp(trimmed.c_str(), "about:blank") == 0) {
        return;
    }
    m_closedTabs.push_front(url);
    while (m_closedTabs.size() > closedTabsLimit) {
        m_closedTabs.pop_back();
    }
}

void AppDelegate::reopenClosedTab(MainWindow* in)
{
    if (m_closedTabs.empty()) {
        return;
    }
    std::string url = m_closedTabs.front();
    m_closedTabs.pop_front();
    if (in && !in->isPrivate()) {
        in->install(BrowserTab::create(url, false), true);
        return;
    }
    auto window = WindowRegistry::shared().firstOrdinaryWindow();
    if (!window) {
        openWindow(url, nullptr);
        return;
    }
    window->install(BrowserTab::create(url, window->isPrivate()), true);
    window->makeKeyAndOrderFront();
}

void AppDelegate::setZoom(double level, const MainWindow* from)
{
    level = std::clamp(level, -7.0, 9.0);
    zoomLevel = level;
    for (const auto& window : WindowRegistry::shared().windows) {
        for (const auto& tab : window->tabs()) {
            tab->view()->setZoomLevel(level);
        }
    }
    if (from && from->isPrivate()) {
        return; // the level holds for this run, but a private window leaves no trace
    }
    Vault::shared().update([level](VaultData& data) { data.currentZoomLevel = level; });
}

void AppDelegate::performBrowserAction(BrowserAction action)
{
    switch (action.kind) {
    case BrowserAction::Kind::newWindow:
        openWindow(homepage(), nullptr);
        break;
    case BrowserAction::Kind::newPrivateWindow:
        openPrivateWindow(nullptr);
        break;
    case BrowserAction::Kind::reopenClosedTab:
        reopenClosedTab(nullptr);
        break;
    default:
        break;
    }
}

bool AppDelegate::isActionEnabledWithoutWindow(BrowserAction action) const
{
    switch (action.kind) {
    case BrowserAction::Kind::newWindow:
    case BrowserAction::Kind::newPrivateWindow:
        return true;
    case BrowserAction::Kind::reopenClosedTab:
        return !m_closedTabs.empty();
    default:
        return false;
    }
}

void AppDelegate::openFromOutside(const LaunchRequest& request)
{
    if (request.privateWindow || request.newWindow) {
        bool isPrivate = request.privateWindow;
        openWindowWith(addressesOrNewTab(request, isPrivate), isPrivate, nullptr);
        return;
    }
    MainWindow* window = keyWindow();
    if (window && window->isPrivate()) {
        window = WindowRegistry::shared().firstOrdinaryWindow().get();
    }
    if (request.urls.empty()) {
        if (window) {
            window->makeKeyAndOrderFront();
        } else {
            reopenWindow(false);
        }
    } else if (!window) {
        openWindowWith(request.urls, false, nullptr);
    } else {
        installAll(*window, request.urls);
        window->makeKeyAndOrderFront();
    }
}

void AppDelegate::reopenWindow(bool isPrivate)
{
    if (isPrivate) {
        openPrivateWindow(nullptr);
    } else {
        openWindow(homepage(), nullptr);
    }
}

} // namespace velder
