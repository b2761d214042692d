#pragma once

#include "core/NotificationCenter.h"

#include <functional>
#include <gtk/gtk.h>
#include <memory>

namespace velder {

// How a widget of the chrome follows the colour settings: it re-applies its colours and redraws whenever
// "Velder.themeDidChange" is posted, from whatever thread.
namespace Themed {

// The subscription; it ends when the token goes or remove() is called. No call reaches the widget after
// that, nor after the widget itself has gone.
class Token {
public:
    Token() = default;
    Token(Token&&) noexcept = default;
    Token& operator=(Token&& other) noexcept;
    ~Token();
    Token(const Token&) = delete;
    Token& operator=(const Token&) = delete;

    void remove();
    explicit operator bool() const { return static_cast<bool>(m_state); }

    struct State;

private:
    friend Token subscribeToTheme(GtkWidget* widget, std::function<void()> applyTheme);

    std::shared_ptr<State> m_state;
    NotificationCenter::Token m_observer;
};

// Observes the theme notification; on each post, calls `applyTheme` on the thread that subscribed (the main
// thread), then queues a redraw of `widget`. The widget is held weakly. A post from another thread is
// carried over by the main loop.
[[nodiscard]] Token subscribeToTheme(GtkWidget* widget, std::function<void()> applyTheme);

} // namespace Themed

} // namespace velder
