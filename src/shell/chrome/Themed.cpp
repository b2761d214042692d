#include "shell/chrome/Themed.h"

#include "core/Theme.h"
#include "glib/MainLoop.h"

#include <atomic>
#include <thread>

namespace velder::Themed {

struct Token::State {
    State(GtkWidget* widget, std::function<void()> apply)
        : applyTheme(std::move(apply))
        , thread(std::this_thread::get_id())
    {
        g_weak_ref_init(&this->widget, widget);
    }
    ~State() { g_weak_ref_clear(&widget); }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    GWeakRef widget;
    const std::function<void()> applyTheme;
    const std::thread::id thread;
    // Cleared on the subscribing thread when the token goes; a hop already queued then does nothing.
    std::atomic<bool> isActive { true };
};

namespace {

void deliver(const std::shared_ptr<Token::State>& state)
{
    if (!state->isActive) {
        return;
    }
    auto* widget = static_cast<GtkWidget*>(g_weak_ref_get(&state->widget));
    if (!widget) {
        return;
    }
    if (state->applyTheme) {
        state->applyTheme();
    }
    if (state->isActive) {
        gtk_widget_queue_draw(widget);
    }
    g_object_unref(widget);
}

} // namespace

Token& Token::operator=(Token&& other) noexcept
{
    if (this != &other) {
        remove();
        m_state = std::move(other.m_state);
        m_observer = std::move(other.m_observer);
    }
    return *this;
}

Token::~Token()
{
    remove();
}

void Token::remove()
{
    if (m_state) {
        m_state->isActive = false;
    }
    m_observer.remove();
    m_state.reset();
}

Token subscribeToTheme(GtkWidget* widget, std::function<void()> applyTheme)
{
    Token token;
    token.m_state = std::make_shared<Token::State>(widget, std::move(applyTheme));
    token.m_observer = NotificationCenter::defaultCenter().addObserver(
        Theme::didChangeNotification, [state = token.m_state](const Notification&) {
            if (std::this_thread::get_id() == state->thread) {
                deliver(state);
            } else {
                MainLoop::post([state] { deliver(state); });
            }
        });
    return token;
}

} // namespace velder::Themed
