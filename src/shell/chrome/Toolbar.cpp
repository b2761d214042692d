#include "shell/chrome/Toolbar.h"

#include "core/Palette.h"
#include "core/Theme.h"
#include "shell/chrome/AddressBar.h"
#include "shell/chrome/ChromeButton.h"
#include "shell/chrome/ToolbarRow.h"

namespace velder {

Toolbar::Toolbar()
    : m_row(std::make_unique<ToolbarRow>())
{
    m_back = makeButton("go-previous-symbolic", "Back", 8);
    m_forward = makeButton("go-next-symbolic", "Forward", 2);
    m_reload = makeButton("view-refresh-symbolic", "Reload", 2);
    // The slots are read at each click, so the window may set them after the buttons exist.
    m_back->onClick = [this] {
        if (onBack) {
            onBack();
        }
    };
    m_forward->onClick = [this] {
        if (onForward) {
            onForward();
        }
    };
    m_reload->onClick = [this] {
        if (onReloadOrStop) {
            onReloadOrStop();
        }
    };

    m_addressBar = std::make_unique<AddressBar>();
    GtkWidget* field = m_addressBar->widget();
    gtk_widget_set_hexpand(field, true);
    gtk_widget_set_size_request(field, -1, 28);
    gtk_widget_set_valign(field, GTK_ALIGN_CENTER);
    gtk_widget_set_margin_start(field, 8);
    gtk_widget_set_margin_end(field, 10);
    m_row->append(field);
}

Toolbar::~Toolbar() = default;

GtkWidget* Toolbar::widget() const
{
    return m_row->widget();
}

std::unique_ptr<ChromeButton> Toolbar::makeButton(const char* symbol, const char* label, int leading)
{
    auto button = std::make_unique<ChromeButton>(ChromeButton::Content::symbol(symbol), label);
    button->ink = [] { return Theme::readable(Palette::textColor(), Palette::fieldColor()); };
    gtk_widget_set_size_request(button->widget(), 28, 26);
    gtk_widget_set_valign(button->widget(), GTK_ALIGN_CENTER);
    gtk_widget_set_margin_start(button->widget(), leading);
    m_row->append(button->widget());
    return button;
}

void Toolbar::setNavigation(bool canGoBack, bool canGoForward, bool isLoading)
{
    m_back->setEnabled(canGoBack);
    m_forward->setEnabled(canGoForward);
    m_reload->setContent(ChromeButton::Content::symbol(isLoading ? "window-close-symbolic" : "view-refresh-symbolic"));
    m_reload->setAccessibilityLabel(isLoading ? "Stop" : "Reload");
}

void Toolbar::redraw()
{
    for (ChromeButton* button : { m_back.get(), m_forward.get(), m_reload.get() }) {
        gtk_widget_queue_draw(button->widget());
    }
}

} // namespace velder
