#include "BridgeTest.h"
#include "core/KeyBinding.h"

#include <gdk/gdkkeysyms.h>

namespace velder::test {

class KeyHookTest : public BridgeTest { };

// Keys reach the owner before the page, as Windows key codes with Velder's modifier bits; a key the owner
// takes never reaches the page, and one it leaves is offered once, although the engine sends it round again.
TEST_F(KeyHookTest, KeysReachTheOwnerBeforeThePage)
{
    SKIP_WITHOUT_REAL_INPUT();
    std::string page = "<!doctype html><title>Keys</title><body><script>window.seen = [];"
                       "addEventListener('keydown', e => seen.push(e.key.toLowerCase()));</script></body>";
    m_server->route("/keys", TestResponse::html(page));
    delegate->handlesKey
        = [](std::int32_t code, std::uint32_t modifiers) { return code == 84 && modifiers == KeyModifier::command; };
    auto view = openLoaded(m_server->url("/keys"), delegate);
    ASSERT_TRUE(runMainLoopUntil([&] { return gtk_widget_get_mapped(view->widget()); }));
    view->setBrowserFocus(true);
    runMainLoopFor(100ms);

    auto countOf = [&](std::int32_t code, std::uint32_t modifiers) {
        return std::count_if(delegate->keys.begin(), delegate->keys.end(),
            [&](const auto& key) { return key.code == code && key.modifiers == modifiers; });
    };

    RealInput::pressKey(view->widget(), GDK_KEY_t, { GDK_KEY_Control_L });
    ASSERT_TRUE(runMainLoopUntil([&] { return countOf(84, KeyModifier::command) > 0; }, 5s));

    RealInput::pressKey(view->widget(), GDK_KEY_a);
    ASSERT_TRUE(waitForScriptValue(*view, "seen.includes('a')", "true"));
    RealInput::pressKey(view->widget(), GDK_KEY_equal, { GDK_KEY_Shift_L });
    ASSERT_TRUE(runMainLoopUntil([&] { return countOf(187, KeyModifier::shift) > 0; }, 5s));
    ASSERT_TRUE(waitForScriptValue(*view, "seen.includes('+')", "true"));

    EXPECT_EQ(countOf(84, KeyModifier::command), 1);
    EXPECT_EQ(countOf(65, 0), 1) << "a key the page leaves unhandled is offered once";
    EXPECT_EQ(countOf(187, KeyModifier::shift), 1);
    EXPECT_EQ(evaluate(*view, "seen.includes('t')"), "false") << "the page never sees a key the owner took";

    // Without the focus in the page, its keys aren't the page's.
    view->setBrowserFocus(false);
    size_t before = delegate->keys.size();
    RealInput::pressKey(view->widget(), GDK_KEY_b);
    runMainLoopFor(300ms);
    EXPECT_EQ(delegate->keys.size(), before);
}

} // namespace velder::test
