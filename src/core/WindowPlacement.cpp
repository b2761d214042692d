#include "core/WindowPlacement.h"

#include "core/WindowSession.h"

#include <algorithm>

namespace velder::WindowPlacement {

Rect defaultFrame(const std::vector<Rect>& visibleFrames)
{
    Rect screen = visibleFrames.empty() ? Rect { 0, 0, defaultWidth, defaultHeight } : visibleFrames.front();
    double midX = screen.x + screen.width / 2;
    double midY = screen.y + screen.height / 2;
    return { midX - defaultWidth / 2, midY - defaultHeight / 2, defaultWidth, defaultHeight };
}

std::optional<Rect> frameFromSession(const WindowSession& session, const std::vector<Rect>& visibleFrames)
{
    if (!session.x || !session.y || !session.w || !session.h) {
        return std::nullopt;
    }
    Rect frame { static_cast<double>(*session.x), static_cast<double>(*session.y),
        std::max(static_cast<double>(*session.w), 400.0), std::max(static_cast<double>(*session.h), 300.0) };
    for (const Rect& screen : visibleFrames) {
        double width = std::min(frame.maxX(), screen.maxX()) - std::max(frame.x, screen.x);
        double height = std::min(frame.maxY(), screen.maxY()) - std::max(frame.y, screen.y);
        if (width >= 120 && height >= 40) {
            return frame;
        }
    }
    return std::nullopt;
}

std::optional<Rect> screenOf(const Rect& window, const std::vector<Rect>& visibleFrames)
{
    if (visibleFrames.empty()) {
        return std::nullopt;
    }
    double centreX = window.x + window.width / 2;
    double centreY = window.y + window.height / 2;
    auto overlap = [&](const Rect& screen) {
        double width = std::min(window.maxX(), screen.maxX()) - std::max(window.x, screen.x);
        double height = std::min(window.maxY(), screen.maxY()) - std::max(window.y, screen.y);
        return std::max(width, 0.0) * std::max(height, 0.0);
    };
    const Rect* best = &visibleFrames.front();
    for (const Rect& screen : visibleFrames) {
        if (centreX >= screen.x && centreX < screen.maxX() && centreY >= screen.y && centreY < screen.maxY()) {
            return screen;
        }
        if (overlap(screen) > overlap(*best)) {
            best = &screen;
        }
    }
    return *best;
}

Rect cascade(const Rect& source, bool sourceIsZoomed, const std::optional<Rect>& screen)
{
    Rect base = (sourceIsZoomed && screen) ? *screen : source;
    Rect frame { base.x + cascadeOffset, base.y + cascadeOffset, base.width, base.height };
    if (!screen) {
        return frame;
    }
    frame.x = std::min(frame.x, screen->maxX() - frame.width);
    frame.x = std::max(frame.x, screen->x);
    frame.y = std::min(frame.y, screen->maxY() - frame.height);
    frame.y = std::max(frame.y, screen->y);
    return frame;
}

} // namespace velder::WindowPlacement
