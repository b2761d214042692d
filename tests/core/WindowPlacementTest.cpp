// Where windows go: saved frames that must stay reachable, the default frame and the cascade.

#include "core/WindowPlacement.h"
#include "core/WindowSession.h"

#include <gtest/gtest.h>

using namespace velder;

TEST(WindowPlacement, SavedFramesMustBeReachable)
{
    std::vector<Rect> screens = { { 0, 0, 1600, 1000 }, { 1600, 0, 1280, 1024 } };
    struct Row {
        const char* name;
        WindowSession session;
        std::optional<Rect> expected;
    };
    std::vector<Row> rows = {
        { "a missing value gives nothing", { {}, 0, 10, 10, 800, std::nullopt }, std::nullopt },
        { "small sizes are raised", { {}, 0, 10, 20, 100, 100 }, Rect { 10, 20, 400, 300 } },
        { "on the second screen", { {}, 0, 1700, 100, 800, 600 }, Rect { 1700, 100, 800, 600 } },
        { "120 by 40 on a screen is enough", { {}, 0, 1480, 960, 800, 600 }, Rect { 1480, 960, 800, 600 } },
        { "less is not", { {}, 0, 2800, 980, 800, 600 }, std::nullopt },
        { "off every screen", { {}, 0, -5000, 0, 800, 600 }, std::nullopt },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(WindowPlacement::frameFromSession(row.session, screens), row.expected);
    }
    EXPECT_EQ(WindowPlacement::defaultFrame(screens), (Rect { 200, 110, 1200, 780 }));
    EXPECT_EQ(WindowPlacement::defaultFrame({}), (Rect { 0, 0, 1200, 780 }));
}

TEST(WindowPlacement, NewWindowsCascadeAndStayOnTheScreen)
{
    Rect screen { 0, 30, 1600, 970 };
    struct Row {
        const char* name;
        Rect source;
        bool zoomed;
        Rect expected;
    };
    std::vector<Row> rows = {
        { "24 each way", { 100, 100, 800, 600 }, false, { 124, 124, 800, 600 } },
        { "pushed back from the right and bottom edges", { 900, 500, 800, 600 }, false, { 800, 400, 800, 600 } },
        { "a maximised source cascades from the screen", { 0, 30, 1600, 970 }, true, { 0, 30, 1600, 970 } },
        { "too large: the left and top edges win", { 0, 0, 2000, 1200 }, false, { 0, 30, 2000, 1200 } },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(WindowPlacement::cascade(row.source, row.zoomed, screen), row.expected);
    }
    EXPECT_EQ(WindowPlacement::cascade({ 3000, 3000, 800, 600 }, false, std::nullopt), (Rect { 3024, 3024, 800, 600 }));
}

// A window's screen: the one holding its centre, else the one it overlaps most, else the primary.
TEST(WindowPlacement, TheScreenOfAWindow)
{
    const std::vector<Rect> screens { { 0, 0, 1000, 800 }, { 1000, 0, 1600, 900 } };
    struct Row {
        const char* name;
        Rect window;
        std::optional<Rect> expected;
    };
    const Row rows[] = {
        { "on the second", { 1200, 100, 600, 400 }, screens[1] },
        { "its centre on the second", { 700, 100, 800, 400 }, screens[1] },
        { "its centre off both, mostly on the first", { -500, 700, 800, 400 }, screens[0] },
        { "off every screen", { 5000, 5000, 100, 100 }, screens[0] },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(WindowPlacement::screenOf(row.window, screens), row.expected);
    }
    EXPECT_EQ(WindowPlacement::screenOf({ 0, 0, 10, 10 }, {}), std::nullopt);
}
