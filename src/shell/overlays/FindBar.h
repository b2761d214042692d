#pragma once

#include "glib/GObjectPtr.h"
#include "shell/chrome/ChromeButton.h"
#include "shell/chrome/Themed.h"

#include <functional>
#include <gtk/gtk.h>
#include <string>

namespace velder {

// The small panel over the page's top right corner for searching the active tab: a field, the match
// count and previous, next and close buttons. It holds no search state; the window runs the search and
// hands the engine's counts back through setResult.
class FindBar {
public:
    static constexpr int width = 330;
    static constexpr int height = 36;

    FindBar();
    ~FindBar();
    FindBar(const FindBar&) = delete;
    FindBar& operator=(const FindBar&) = delete;

    GtkWidget* widget() const { return m_widget.get(); }
    // The GtkText of the search text, and the GtkLabel of the count.
    GtkWidget* field() const { return m_field; }
    GtkWidget* countLabel() const { return m_countLabel; }
    ChromeButton& previousButton() { return m_previousButton; }
    ChromeButton& nextButton() { return m_nextButton; }
    ChromeButton& closeButton() { return m_closeButton; }

    // Every edit of the search text, and a re-opening with text in the field.
    std::function<void(const std::string& text)> onQueryChanged;
    std::function<void()> onNext;
    std::function<void()> onPrev;
    std::function<void()> onClose;

    std::string text() const;
    std::string countText() const;
    bool isShowing() const { return gtk_widget_get_visible(m_widget.get()); }

    // Shows the bar and puts the keyboard in the field with all its text selected; text already there
    // is searched for again.
    void open();
    // Hides the bar and empties the count. The text stays, so that re-opening finds the same thing.
    void hide();
    // "" for an empty field, "0" without a match, else "3/12"; previous and next work only with matches.
    void setResult(int matchCount, int activeMatch);

    // What the field's key controller calls; answers whether the key is consumed.
    bool handleKey(guint keyval, GdkModifierType modifiers);

    // Internal: the field's "changed" signal and the widget's vfuncs.
    void reportTextChange();
    void snapshot(GtkSnapshot* snapshot);
    void allocate(int width, int height);

private:
    void applyTheme();

    GObjectPtr<GtkWidget> m_widget;
    GtkWidget* m_field = nullptr; // children of m_widget
    GtkWidget* m_countLabel = nullptr;
    ChromeButton m_previousButton;
    ChromeButton m_nextButton;
    ChromeButton m_closeButton;
    Themed::Token m_themeToken;
    bool m_replaceOnType = false; // from opening to the first key: typing replaces the search
};

} // namespace velder
