#include "shell/window/WindowRegistry.h"

#include "core/Vault.h"
#include "shell/window/MainWindow.h"

#include <algorithm>

namespace velder {

WindowRegistry& WindowRegistry::shared()
{
    static auto* registry = new WindowRegistry();
    return *registry;
}

void WindowRegistry::startPeriodicCapture()
{
    if (m_timer) {
        return;
    }
    m_timer = g_timeout_add_seconds(
        20,
        +[](gpointer) -> gboolean {
            WindowRegistry::shared().capture();
            return G_SOURCE_CONTINUE;
        },
        nullptr);
}

void WindowRegistry::capture()
{
    if (m_isShuttingDown) {
        return;
    }
    std::vector<std::shared_ptr<MainWindow>> ordinary;
    std::copy_if(windows.begin(), windows.end(), std::back_inserter(ordinary),
        [](const auto& window) { return !window->isPrivate(); });
    if (ordinary.empty()) {
        return; // the last window's session stays for the next start
    }
    std::vector<WindowSession> old = Vault::shared().snapshot()->windows;
    std::vector<WindowSession> records;
    for (std::size_t i = 0; i < ordinary.size(); ++i) {
        WindowSession record = ordinary[i]->sessionRecord();
        // A window without a placement of its own keeps the one saved at its place.
        if (!record.x && i < old.size() && old[i].x) {
            record.x = old[i].x;
            record.y = old[i].y;
            record.w = old[i].w;
            record.h = old[i].h;
            record.state = old[i].state;
        }
        records.push_back(std::move(record));
    }
    Vault::shared().update([&](VaultData& data) { data.windows = std::move(records); });
}

void WindowRegistry::captureFinalAndStop()
{
    if (m_timer) {
        g_source_remove(m_timer);
        m_timer = 0;
    }
    capture();
    m_isShuttingDown = true;
}

bool WindowRegistry::restoreSavedSession()
{
    auto data = Vault::shared().snapshot();
    if (!data->settings.restoreSession) {
        return false;
    }
    bool opened = false;
    for (const WindowSession& session : data->windows) {
        if (session.tabs.empty()) {
            continue;
        }
        auto window = MainWindow::create(session);
        windows.push_back(window);
        window->makeKeyAndOrderFront();
        if (session.state == WindowState::zoomed) {
            window->placement().zoom();
        }
        opened = true;
    }
    return opened;
}

std::optional<WindowSession> WindowRegistry::savedShape() const
{
    for (const WindowSession& session : Vault::shared().snapshot()->windows) {
        if (session.x) {
            return session;
        }
    }
    return std::nullopt;
}

std::shared_ptr<MainWindow> WindowRegistry::firstOrdinaryWindow() const
{
    for (const auto& window : windows) {
        if (!window->isPrivate()) {
            return window;
        }
    }
    return nullptr;
}

std::vector<std::shared_ptr<MainWindow>> WindowRegistry::others(const MainWindow* than) const
{
    std::vector<std::shared_ptr<MainWindow>> result;
    std::copy_if(windows.begin(), windows.end(), std::back_inserter(result),
        [than](const auto& window) { return window.get() != than; });
    return result;
}

std::shared_ptr<MainWindow> WindowRegistry::find(const MainWindow* window) const
{
    for (const auto& candidate : windows) {
        if (candidate.get() == window) {
            return candidate;
        }
    }
    return nullptr;
}

void WindowRegistry::remove(const MainWindow* window)
{
    std::erase_if(windows, [window](const auto& candidate) { return candidate.get() == window; });
}

void WindowRegistry::reset()
{
    if (m_timer) {
        g_source_remove(m_timer);
        m_timer = 0;
    }
    windows.clear();
    m_isShuttingDown = false;
}

} // namespace velder
