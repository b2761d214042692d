#include "shell/window/AddressEditing.h"

#include "core/UrlHelper.h"
#include "core/Vault.h"
#include "shell/chrome/AddressBar.h"
#include "shell/overlays/UrlSuggestions.h"

#include <gtk/gtk.h>

namespace velder {

// The bar and the list live as long as the window's chrome, which owns this object too.
AddressEditing::AddressEditing(AddressBar& bar, UrlSuggestions& suggestions, std::function<std::string()> pageAddress,
    std::function<void(const std::string&)> navigate, std::function<void()> left)
    : m_bar(bar)
    , m_suggestions(suggestions)
    , m_pageAddress(std::move(pageAddress))
    , m_navigate(std::move(navigate))
    , m_left(std::move(left))
{
    m_bar.onCommit = [this](const std::string& text) { commit(text); };
    m_bar.onTextChanged = [this](const std::string& text) {
        m_typed = text;
        m_suggestions.update(text);
        gtk_widget_queue_resize(gtk_widget_get_parent(m_suggestions.widget()));
    };
    m_bar.onMoveSelection = [this](int delta) {
        if (!m_suggestions.isShowing()) {
            return false;
        }
        m_suggestions.moveSelection(delta);
        if (auto selected = m_suggestions.selectedIndex()) {
            m_bar.setText(m_suggestions.entries()[static_cast<std::size_t>(*selected)].url);
        }
        return true;
    };
    m_bar.onCancel = [this] { return cancel(); };
    m_bar.onFocusChanged = [this](bool focused) { focusChanged(focused); };
    m_suggestions.onAccept = [this](const HistoryEntry& entry) { go(entry.url); };
}

bool AddressEditing::cancel()
{
    if (m_suggestions.isShowing()) {
        m_suggestions.clear();
        m_bar.setText(m_typed);
        return true;
    }
    // Nothing left to take away: the page's own address comes back. When it is there already, Escape goes
    // on to the window, which stops a load.
    std::string address = m_pageAddress();
    if (m_bar.text() == address) {
        return false;
    }
    m_typed = address;
    m_bar.setText(address);
    m_bar.focusAndSelectAll();
    return true;
}

void AddressEditing::focusChanged(bool focused)
{
    if (focused) {
        m_typed = m_bar.text();
    } else {
        m_suggestions.clear();
        if (m_bar.text() != m_typed) {
            m_bar.setText(m_pageAddress()); // a row walked past is no address of the user's
        }
        m_left();
    }
    gtk_widget_queue_draw(m_bar.widget());
}

void AddressEditing::commit(const std::string& text)
{
    if (auto selected = m_suggestions.selectedIndex();
        selected && *selected >= 0 && static_cast<std::size_t>(*selected) < m_suggestions.entries().size()) {
        go(m_suggestions.entries()[static_cast<std::size_t>(*selected)].url);
        return;
    }
    m_suggestions.clear();
    auto target = UrlHelper::navigationTarget(text, Vault::shared().snapshot()->settings.searchTemplate);
    if (!target) {
        m_bar.beep();
        return;
    }
    m_navigate(*target);
}

void AddressEditing::go(const std::string& url)
{
    std::string chosen = url; // the list's rows go with clear()
    m_suggestions.clear();
    m_navigate(chosen);
}

} // namespace velder
