#pragma once

#include <functional>
#include <gtk/gtk.h>
#include <memory>

namespace velder {

class AddressBar;
class ChromeButton;
class ToolbarRow;

// The row under the title bar: back, forward, reload (stop while loading) and the address bar.
class Toolbar {
public:
    Toolbar();
    ~Toolbar();
    Toolbar(const Toolbar&) = delete;
    Toolbar& operator=(const Toolbar&) = delete;

    GtkWidget* widget() const;
    AddressBar& addressBar() const { return *m_addressBar; }

    std::function<void()> onBack;
    std::function<void()> onForward;
    std::function<void()> onReloadOrStop;

    // The buttons follow the active tab: back and forward enabled as it allows, reload a stop while it loads.
    void setNavigation(bool canGoBack, bool canGoForward, bool isLoading);
    void redraw();

private:
    std::unique_ptr<ChromeButton> makeButton(const char* symbol, const char* label, int leading);

    std::unique_ptr<ToolbarRow> m_row;
    std::unique_ptr<ChromeButton> m_back;
    std::unique_ptr<ChromeButton> m_forward;
    std::unique_ptr<ChromeButton> m_reload;
    std::unique_ptr<AddressBar> m_addressBar;
};

} // namespace velder
