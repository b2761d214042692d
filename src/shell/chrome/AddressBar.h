#pragma once

#include "glib/GObjectPtr.h"
#include "glib/SignalConnection.h"
#include "shell/chrome/LocationPin.h"
#include "shell/chrome/Themed.h"

#include <functional>
#include <gtk/gtk.h>
#include <string>

namespace velder {

// The one line where the user both searches and navigates: a bare text field on the field colour, with
// the location pin at its end. It reports editing and keys through the callbacks and leaves the meaning
// of the text to the window.
//
// While not editing, a click anywhere on the bar but the pin starts editing with all the text selected,
// so that typing replaces the address.
class AddressBar {
public:
    static constexpr const char* placeholder = "Search or enter address";

    AddressBar();
    ~AddressBar();
    AddressBar(const AddressBar&) = delete;
    AddressBar& operator=(const AddressBar&) = delete;

    GtkWidget* widget() const { return m_widget.get(); }
    // The GtkText that holds the text.
    GtkWidget* field() const { return m_field; }
    LocationPin& pin() { return m_pin; }

    // Return, always consumed.
    std::function<void(const std::string& text)> onCommit;
    // The text changed by the user (not by setText).
    std::function<void(const std::string& text)> onTextChanged;
    // Up (-1) or Down (+1); true consumes the key. Unset: not consumed.
    std::function<bool(int delta)> onMoveSelection;
    // Escape; true consumes the key. Also called, its answer unused, when editing ends.
    std::function<bool()> onCancel;
    // Editing began (true) or ended (false).
    std::function<void(bool editing)> onFocusChanged;

    std::string text() const;
    // Replaces the text without reporting it through onTextChanged.
    void setText(const std::string& text);
    bool isEditing() const { return m_isEditing; }
    // The field takes the keyboard with all its text selected.
    void focusAndSelectAll();
    // The refusal sound, for an address that leads nowhere.
    void beep();

    // The field's width in a bar `barWidth` wide: 10 pixels each side, 34 on the right while the pin shows.
    static double fieldWidth(double barWidth, bool pinShown);

    // What the controllers call; tests drive them directly. handleKey answers whether the key is consumed.
    bool handleKey(guint keyval, GdkModifierType modifiers);
    void beginEditing();
    void endEditing();
    // A press on the bar itself, in its coordinates.
    void click(double x, double y);

    // Internal: the field's "changed" signal, the window's focus, and the widget's vfuncs.
    void reportTextChange();
    void watchFocus();
    void unwatchFocus();
    void followFocus();
    void snapshot(GtkSnapshot* snapshot);
    void allocate(int width, int height);
    void measure(GtkOrientation orientation, int forSize, int* minimum, int* natural);

private:
    void applyTheme();

    GObjectPtr<GtkWidget> m_widget;
    GtkWidget* m_field = nullptr; // a child of m_widget
    LocationPin m_pin;
    bool m_isEditing = false;
    bool m_isSettingText = false;
    SignalConnection m_focusWatch; // the window's "notify::focus-widget"
    Themed::Token m_themeToken;
};

} // namespace velder
