#pragma once

#include "core/WindowPlacement.h"

#include <gtk/gtk.h>
#include <optional>
#include <utility>
#include <vector>

namespace velder {

struct WindowSession;

// Where a window stands on the desktop and how large it is: its frame in the normal state, kept through
// maximise, full screen and minimise, placed at start and written into the session. Positions exist on X11
// only; elsewhere the compositor places windows and only the size and state are kept.
class WindowFrame {
public:
    WindowFrame(GtkWindow* window, Rect initial, bool hasOwnPlacement);
    ~WindowFrame();
    WindowFrame(const WindowFrame&) = delete;
    WindowFrame& operator=(const WindowFrame&) = delete;

    Rect frame() const;
    bool isZoomed() const;
    bool isFullScreen() const;
    bool isMinimized() const;
    void zoom(); // maximise
    void toggleZoom();
    void toggleFullScreen();
    void minimize();

    // Whether the frame was placed by a session or by the user, and so is worth saving.
    bool hasOwnPlacement() const { return m_hasOwnPlacement; }
    // The frame to come back to from a maximise, full screen or minimise.
    Rect normalFrame() const { return m_normalFrame; }
    // Writes the saved frame and state into the window's record.
    void writeTo(WindowSession& record) const;

    // The windows' usable screen areas, the main screen's first (X11; empty where positions are unknown).
    static std::vector<Rect> visibleFrames();
    static Rect defaultFrame() { return WindowPlacement::defaultFrame(visibleFrames()); }
    // A new window's frame, a step down and right from this one.
    Rect cascade() const;

private:
    void keepNormalFrame();
    void track();
    static void onMapped(GtkWidget*, gpointer self);
    static void onSizeChanged(GObject*, GParamSpec*, gpointer self);

    GtkWindow* m_window; // owned by the main window
    bool m_hasOwnPlacement;
    Rect m_normalFrame;
    mutable std::optional<std::pair<int, int>> m_firstSeenAt; // to tell a move by the user
};

} // namespace velder
