#pragma once

#include "core/HistoryEntry.h"
#include "glib/GObjectPtr.h"
#include "shell/chrome/Themed.h"

#include <functional>
#include <gtk/gtk.h>
#include <optional>
#include <string_view>
#include <vector>

namespace velder {

// The list of history matches that hangs under the address bar: up to eight rows of title and address,
// one of them picked by the keyboard, one under the pointer. The window places it and wires it to the bar;
// it never takes the keyboard focus, so typing goes on in the bar while it shows.
class UrlSuggestions {
public:
    static constexpr double rowHeight = 34;
    static constexpr double verticalInset = 4;
    static constexpr std::size_t limit = 8;

    UrlSuggestions();
    ~UrlSuggestions();
    UrlSuggestions(const UrlSuggestions&) = delete;
    UrlSuggestions& operator=(const UrlSuggestions&) = delete;

    GtkWidget* widget() const { return m_widget.get(); }

    // A row was clicked.
    std::function<void(const HistoryEntry& entry)> onAccept;

    const std::vector<HistoryEntry>& entries() const { return m_entries; }
    std::optional<int> selectedIndex() const { return m_selectedIndex; }
    std::optional<int> hoverIndex() const { return m_hoverIndex; }
    bool isShowing() const { return gtk_widget_get_visible(m_widget.get()); }

    // Fills the list from the history for the trimmed text and shows it, or clears it when the text is
    // blank or nothing matches. Both indexes start over.
    void update(std::string_view query);
    // Moves the keyboard's row: from none, down picks the first and up the last; past either end, none
    // again (back to what was typed). Ignored while hidden or empty.
    void moveSelection(int delta);
    // No rows, no indexes, hidden.
    void clear();

    // rows · 34 + 8.
    static double height(std::size_t rows);
    // The row at y (downwards from the top) in a list `listHeight` high; the top inset counts as row 0,
    // and past the last row or outside the list there is none.
    static std::optional<int> rowAt(double y, double listHeight, std::size_t rows);

    // What the pointer controllers call, in the list's coordinates; tests drive them directly.
    void pointerMoved(double x, double y);
    void pointerLeft();
    void release(double x, double y);

    // Internal: the widget's snapshot.
    void snapshot(GtkSnapshot* snapshot);

private:
    void setHover(std::optional<int> index);

    GObjectPtr<GtkWidget> m_widget;
    std::vector<HistoryEntry> m_entries;
    std::optional<int> m_selectedIndex;
    std::optional<int> m_hoverIndex;
    Themed::Token m_themeToken;
};

} // namespace velder
