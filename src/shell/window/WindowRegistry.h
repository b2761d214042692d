#pragma once

#include "core/WindowSession.h"

#include <glib.h>
#include <memory>
#include <optional>
#include <vector>

namespace velder {

class MainWindow;

// The process's list of open browser windows, and the only writer of the saved session: ordinary windows
// are captured into the vault every 20 seconds, when a window closes and once at quit, and rebuilt at start.
// Main thread only.
class WindowRegistry {
public:
    static WindowRegistry& shared();

    // Open windows in order of opening; this list keeps them alive.
    std::vector<std::shared_ptr<MainWindow>> windows;

    void startPeriodicCapture();
    void capture();
    // The last capture at quit: the timer stops and every later capture is refused.
    void captureFinalAndStop();
    // Opens the saved windows when the settings say so; true if any opened.
    bool restoreSavedSession();
    // The first saved record with a position of its own.
    std::optional<WindowSession> savedShape() const;
    std::shared_ptr<MainWindow> firstOrdinaryWindow() const;
    std::vector<std::shared_ptr<MainWindow>> others(const MainWindow* than) const;
    std::shared_ptr<MainWindow> find(const MainWindow* window) const;
    void remove(const MainWindow* window);

    bool isShuttingDown() const { return m_isShuttingDown; }
    bool isCapturing() const { return m_timer != 0; }
    // Back to the start (tests).
    void reset();

private:
    guint m_timer = 0;
    bool m_isShuttingDown = false;
};

} // namespace velder
