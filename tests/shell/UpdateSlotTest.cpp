#include "WidgetTestSupport.h"

#include "core/ManualTimers.h"
#include "core/UpdateController.h"
#include "shell/chrome/UpdateSlot.h"
#include "support/ScopedStores.h"

#include <chrono>
#include <cmath>

namespace velder::test {
namespace {

using UpdateSlotTest = WidgetTest;

struct Step {
    UpdateState state;
    bool clean = false;
};

struct SequenceCase {
    const char* name;
    UpdateState initial;
    std::vector<Step> steps;
    bool spinning;
    bool tick;
    const char* tooltip; // null: none
};

TEST_F(UpdateSlotTest, FollowsTheUpdatersStates)
{
    const auto idle = UpdateState::idle();
    const auto checking = UpdateState::checking();
    const auto staged = UpdateState::staged("0.2.0");
    const SequenceCase cases[] = {
        { "a clean check with nothing new ticks", idle, { { checking }, { idle, true } }, false, true,
            "Velder is up to date" },
        { "a check that failed shows nothing", idle, { { checking }, { idle, false } }, false, false, nullptr },
        { "while checking", idle, { { checking } }, true, false, "Checking for updates…" },
        { "a check over a staged update keeps the badge", idle, { { staged }, { checking }, { staged } }, false, false,
            "Update to v0.2.0" },
        { "a new check during the tick ends it", idle, { { checking }, { idle, true }, { checking } }, true, false,
            "Checking for updates…" },
        { "no tick for a check the slot didn't see begin", checking, { { idle, true } }, false, false, nullptr },
        { "a clean idle without a check", idle, { { idle, true } }, false, false, nullptr },
        { "a slot made during a check", checking, {}, true, false, "Checking for updates…" },
    };
    for (const SequenceCase& row : cases) {
        SCOPED_TRACE(row.name);
        UpdateSlot slot(row.initial);
        for (const Step& step : row.steps) {
            slot.apply(step.state, step.clean);
        }
        EXPECT_EQ(slot.isSpinning(), row.spinning);
        EXPECT_EQ(slot.isTickShowing(), row.tick);
        EXPECT_STREQ(gtk_widget_get_tooltip_text(slot.widget()), row.tooltip);
    }
}

TEST_F(UpdateSlotTest, TheTickGoesAfterThreeSecondsAndTheSpinnerTurnsOnceASecond)
{
    ManualTimers timers;
    UpdateSlot slot(UpdateState::idle(), timers);
    slot.apply(UpdateState::checking());
    timers.advance(std::chrono::milliseconds(33 * 30));
    EXPECT_NEAR(slot.spinAngle(), 2 * M_PI, 1e-9);
    slot.apply(UpdateState::idle(), true);
    timers.advance(std::chrono::milliseconds(2999));
    EXPECT_TRUE(slot.isTickShowing());
    EXPECT_DOUBLE_EQ(slot.spinAngle(), 30 * UpdateSlot::spinStep) << "the spinner stopped with the check";
    timers.advance(std::chrono::milliseconds(1));
    EXPECT_FALSE(slot.isTickShowing());
    EXPECT_EQ(gtk_widget_get_tooltip_text(slot.widget()), nullptr) << "the tick's tooltip goes with it";
    EXPECT_EQ(timers.pending(), 0u);
}

TEST_F(UpdateSlotTest, FollowsTheControllerAndItsBadgeInstalls)
{
    ScopedStores stores;
    UpdateController controller;
    auto slot = UpdateSlot::following(controller);
    host(slot->widget(), UpdateSlot::side, UpdateSlot::side);
    std::optional<UpdateChoice> reply;
    controller.stage("0.2.0", [&](UpdateChoice choice) { reply = choice; });
    EXPECT_STREQ(gtk_widget_get_tooltip_text(slot->widget()), "Update to v0.2.0");
    slot->press();
    slot->release(11, 11);
    EXPECT_EQ(reply, UpdateChoice::install);
    EXPECT_EQ(stores.vault().snapshot()->updateApplyAttempted, "0.2.0");
}

TEST_F(UpdateSlotTest, AClickOnTheBadgeInstalls)
{
    struct Row {
        const char* name;
        UpdateState state;
        double releaseX;
        int installs;
    };
    const Row rows[] = {
        { "released on the badge", UpdateState::staged("0.2.0"), 11, 1 },
        { "released outside", UpdateState::staged("0.2.0"), 30, 0 },
        { "nothing staged", UpdateState::idle(), 11, 0 },
        { "while checking", UpdateState::checking(), 11, 0 },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        UpdateSlot slot;
        int installs = 0;
        slot.onApplyStaged = [&] { ++installs; };
        host(slot.widget(), UpdateSlot::side, UpdateSlot::side);
        slot.apply(row.state);
        slot.press();
        slot.release(row.releaseX, 11);
        EXPECT_EQ(installs, row.installs);
    }
}

TEST_F(UpdateSlotTest, DrawsEachStateOnTheBorderColour)
{
    setColors("cyan", "magenta", "charcoal", "charcoal", "gunmetal");
    const Color gunmetal = Color::fromHex(0x282828);
    const Color magenta = Color::fromHex(0xC000C0);
    const Color white = Color::fromHex(0xFFFFFF);
    const Color lit = Color::fromHex(0x3CD05C);
    UpdateSlot slot;
    host(slot.widget(), UpdateSlot::side, UpdateSlot::side);

    Rendering plain = render(slot.widget());
    EXPECT_EQ(plain.countNear(gunmetal, 1, 0, 0, 22, 22), 22 * 22) << "idle: the fill alone";

    slot.apply(UpdateState::staged("0.2.0"));
    Rendering badge = render(slot.widget());
    EXPECT_TRUE(pixelIs(badge.at(0, 0), gunmetal));
    EXPECT_TRUE(pixelIs(badge.at(14, 7), magenta)) << "the badge";
    EXPECT_TRUE(near(badge.farthestFrom(magenta, 8, 7, 7, 9), white, 70)) << "the arrow, white on magenta";

    slot.apply(UpdateState::checking());
    Rendering spinner = render(slot.widget());
    // Charcoal on gunmetal is too faint for the contrast rule, so the spinner is white.
    EXPECT_TRUE(near(spinner.farthestFrom(gunmetal, 0, 0, 22, 22), white, 40));
    EXPECT_TRUE(pixelIs(spinner.at(11, 11), gunmetal)) << "a ring, empty in the middle";

    slot.apply(UpdateState::idle(), true);
    Rendering tick = render(slot.widget());
    EXPECT_TRUE(near(tick.farthestFrom(gunmetal, 4, 4, 14, 14), lit, 40));
}

} // namespace
} // namespace velder::test
