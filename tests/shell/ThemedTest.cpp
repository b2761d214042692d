#include "WidgetTestSupport.h"

#include "core/NotificationCenter.h"
#include "core/Theme.h"
#include "shell/chrome/Themed.h"

#include <thread>

namespace velder::test {
namespace {

class ThemedTest : public WidgetTest {
protected:
    void post() { NotificationCenter::defaultCenter().post(Theme::didChangeNotification); }
};

// A post applies at once on the main thread, and from another thread by a hop to the main thread.
TEST_F(ThemedTest, AppliesEachPostOnTheMainThread)
{
    GtkWidget* widget = g_object_ref_sink(gtk_label_new(""));
    std::thread::id appliedOn;
    int applied = 0;
    auto token = Themed::subscribeToTheme(widget, [&] {
        ++applied;
        appliedOn = std::this_thread::get_id();
    });
    post();
    post();
    EXPECT_EQ(applied, 2);
    std::thread([this] { post(); }).join();
    EXPECT_TRUE(runMainLoopUntil([&] { return applied == 3; }));
    EXPECT_EQ(appliedOn, std::this_thread::get_id());
    g_object_unref(widget);
}

// Nothing reaches a subscription whose token went, nor a widget that has gone, even a hop already queued from
// another thread.
TEST_F(ThemedTest, NothingReachesAnEndedSubscriptionOrAGoneWidget)
{
    for (bool widgetGoes : { false, true }) {
        SCOPED_TRACE(widgetGoes ? "the widget goes" : "the token goes");
        GtkWidget* widget = g_object_ref_sink(gtk_label_new(""));
        int applied = 0;
        auto token = Themed::subscribeToTheme(widget, [&] { ++applied; });
        std::thread([this] { post(); }).join();
        if (widgetGoes) {
            g_clear_object(&widget);
            post();
        } else {
            token = {};
        }
        drain();
        EXPECT_EQ(applied, 0);
        g_clear_object(&widget);
    }
}

} // namespace
} // namespace velder::test
