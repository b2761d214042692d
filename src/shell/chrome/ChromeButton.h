#pragma once

#include "core/Color.h"
#include "glib/GObjectPtr.h"
#include "shell/chrome/Themed.h"

#include <functional>
#include <gio/gio.h>
#include <gtk/gtk.h>
#include <string>

namespace velder {

// The one button of the chrome: a symbol or a text drawn in an ink colour asked for at each draw, with a
// faint rounded background while hovered or pressed. A press either pops a menu or, released inside,
// clicks. Pressing never drags the window, even in the title bar.
class ChromeButton {
public:
    struct Content {
        static Content symbol(std::string name) { return { true, std::move(name) }; }
        static Content text(std::string text, double pixelSize, PangoWeight weight = PANGO_WEIGHT_NORMAL)
        {
            return { false, std::move(text), pixelSize, weight };
        }

        bool isSymbol = true;
        std::string value; // the icon name ("go-previous-symbolic") or the text
        double fontSize = 13; // text only
        PangoWeight fontWeight = PANGO_WEIGHT_NORMAL; // text only
    };

    // `accessibilityLabel` is also the tooltip; the accessible role is button. Without a label there is no
    // tooltip, and a text is its own label.
    ChromeButton(Content content, const std::string& accessibilityLabel);
    ~ChromeButton();
    ChromeButton(const ChromeButton&) = delete;
    ChromeButton& operator=(const ChromeButton&) = delete;

    GtkWidget* widget() const { return m_widget.get(); }

    // The content's colour, asked at each draw; the passive colour when empty.
    std::function<Color()> ink;
    // The colour while hovered; when empty, the ink lifted by 0.3.
    std::function<Color()> hoverInk;
    std::function<void()> onClick;
    // The colour the button is drawn over, for its focus ring; when empty, the field colour.
    std::function<Color()> background;
    // When set, a press shows this menu (x 0, y height + 4) instead of clicking. A null model shows nothing.
    std::function<GObjectPtr<GMenuModel>()> menuProvider;

    const Content& content() const { return m_content; }
    void setContent(Content content);
    void setAccessibilityLabel(const std::string& label);

    bool isEnabledButton() const { return m_isEnabled; }
    // Disabling also clears the hover and any press in progress.
    void setEnabled(bool enabled);

    double symbolPointSize() const { return m_symbolPointSize; }
    void setSymbolPointSize(double pointSize);
    PangoWeight symbolWeight() const { return m_symbolWeight; }
    void setSymbolWeight(PangoWeight weight);
    bool drawsHoverBackground() const { return m_drawsHoverBackground; }
    void setDrawsHoverBackground(bool draws);

    bool isHovered() const { return m_isHovered; }
    bool isPressed() const { return m_isPressed; }

    // Return, Enter or Space on the focused button: its menu, or its click.
    void activate();
    // Whether Tab reaches it (while enabled): true unless its owner offers the same by other keys.
    void setFocusable(bool focusable);

    // The text's width in its font, or the symbol's image width; 0 for an unknown symbol.
    double contentWidth() const;

    // What the event controllers call, in the widget's coordinates; tests drive them directly.
    void pointerEntered();
    void pointerLeft();
    void press();
    void pointerMoved(double x, double y);
    void release(double x, double y);
    void cancelPress();

    // Internal: the widget's snapshot.
    void snapshot(GtkSnapshot* snapshot);

private:
    void describe();
    Color inkColor() const;
    void redraw();

    GObjectPtr<GtkWidget> m_widget;
    Content m_content;
    std::string m_accessibilityLabel;
    bool m_isEnabled = true;
    bool m_isFocusable = true;
    double m_symbolPointSize = 13;
    PangoWeight m_symbolWeight = PANGO_WEIGHT_MEDIUM;
    bool m_drawsHoverBackground = true;
    bool m_isHovered = false;
    bool m_isPressed = false;
    bool m_isTracking = false; // a press that may end in a click
    Themed::Token m_themeToken;
};

} // namespace velder
