#include "shell/chrome/ChromeButton.h"

#include "core/Palette.h"
#include "core/Theme.h"
#include "shell/chrome/Drawing.h"
#include "shell/chrome/KeyboardFocus.h"
#include "shell/chrome/OwnedWidget.h"
#include "shell/chrome/PopupMenu.h"
#include "shell/chrome/PressGesture.h"
#include "shell/chrome/SymbolCache.h"

#include <cmath>

using VelderChromeButton = velder::OwnedWidget<velder::ChromeButton>;
using VelderChromeButtonClass = GtkWidgetClass;
G_DEFINE_TYPE(VelderChromeButton, velder_chrome_button, GTK_TYPE_WIDGET)

namespace {

using velder::ChromeButton;

void buttonMeasure(GtkWidget* widget, GtkOrientation orientation, int, int* minimum, int* natural, int*, int*)
{
    int size = 0;
    if (auto* button = velder::ownerOf<ChromeButton>(widget)) {
        if (orientation == GTK_ORIENTATION_HORIZONTAL) {
            size = static_cast<int>(std::ceil(button->contentWidth()));
        } else if (button->content().isSymbol) {
            size = velder::SymbolCache::pixelSize(button->symbolPointSize());
        } else {
            auto layout = velder::Drawing::textLayout(
                widget, button->content().value, button->content().fontSize, button->content().fontWeight);
            size = static_cast<int>(std::ceil(velder::Drawing::layoutSize(layout.get()).height));
        }
    }
    *minimum = *natural = size;
}

void buttonSizeAllocate(GtkWidget* widget, int, int, int)
{
    velder::PopupMenu::presentAll(widget);
}

} // namespace

static void velder_chrome_button_class_init(VelderChromeButtonClass* widgetClass)
{
    widgetClass->snapshot = velder::snapshotByOwner<ChromeButton>;
    widgetClass->measure = buttonMeasure;
    widgetClass->size_allocate = buttonSizeAllocate;
    G_OBJECT_CLASS(widgetClass)->dispose = velder::disposeWithChildren<velder_chrome_button_get_type>;
    gtk_widget_class_set_css_name(widgetClass, "chromebutton");
    gtk_widget_class_set_accessible_role(widgetClass, GTK_ACCESSIBLE_ROLE_BUTTON);
}

static void velder_chrome_button_init(VelderChromeButton* self)
{
    GtkWidget* widget = GTK_WIDGET(self);
    velder::addHoverTracking<ChromeButton>(widget);

    velder::addPressGesture<ChromeButton>(widget);
    velder::KeyboardFocus::enable(widget, [widget] {
        if (auto* button = velder::ownerOf<ChromeButton>(widget)) {
            button->activate();
        }
    });
}

namespace velder {

ChromeButton::ChromeButton(Content content, const std::string& accessibilityLabel)
    : m_widget(GObjectPtr<GtkWidget>::adopt(GTK_WIDGET(g_object_new(velder_chrome_button_get_type(), nullptr))))
    , m_content(std::move(content))
{
    setOwner(m_widget.get(), this);
    setAccessibilityLabel(accessibilityLabel);
    // The ink is read at each draw; a theme change only has to redraw.
    m_themeToken = Themed::subscribeToTheme(m_widget.get(), nullptr);
}

ChromeButton::~ChromeButton()
{
    setOwner<ChromeButton>(m_widget.get(), nullptr);
}

void ChromeButton::setContent(Content content)
{
    m_content = std::move(content);
    describe();
    gtk_widget_queue_resize(m_widget.get());
}

void ChromeButton::setAccessibilityLabel(const std::string& label)
{
    m_accessibilityLabel = label;
    describe();
}

void ChromeButton::describe()
{
    // A button without a label (the wordmark) has no tooltip, and is read out by its text.
    const std::string& label = m_accessibilityLabel;
    gtk_widget_set_tooltip_text(m_widget.get(), label.empty() ? nullptr : label.c_str());
    const std::string& name = label.empty() && !m_content.isSymbol ? m_content.value : label;
    gtk_accessible_update_property(GTK_ACCESSIBLE(m_widget.get()), GTK_ACCESSIBLE_PROPERTY_LABEL, name.c_str(), -1);
}

void ChromeButton::setEnabled(bool enabled)
{
    if (enabled == m_isEnabled) {
        return;
    }
    m_isEnabled = enabled;
    if (!enabled) {
        m_isHovered = false;
        m_isPressed = false;
        m_isTracking = false;
    }
    gtk_accessible_update_state(GTK_ACCESSIBLE(m_widget.get()), GTK_ACCESSIBLE_STATE_DISABLED, !enabled, -1);
    gtk_widget_set_focusable(m_widget.get(), enabled && m_isFocusable);
    redraw();
}

void ChromeButton::setSymbolPointSize(double pointSize)
{
    m_symbolPointSize = pointSize;
    gtk_widget_queue_resize(m_widget.get());
}

void ChromeButton::setSymbolWeight(PangoWeight weight)
{
    m_symbolWeight = weight;
    redraw();
}

void ChromeButton::setDrawsHoverBackground(bool draws)
{
    m_drawsHoverBackground = draws;
    redraw();
}

double ChromeButton::contentWidth() const
{
    if (m_content.isSymbol) {
        bool known = SymbolCache::image(m_content.value, m_symbolPointSize, m_symbolWeight);
        return known ? SymbolCache::pixelSize(m_symbolPointSize) : 0;
    }
    auto layout = Drawing::textLayout(m_widget.get(), m_content.value, m_content.fontSize, m_content.fontWeight);
    return Drawing::layoutSize(layout.get()).width;
}

void ChromeButton::pointerEntered()
{
    if (m_isEnabled && !m_isHovered) {
        m_isHovered = true;
        redraw();
    }
}

void ChromeButton::pointerLeft()
{
    if (m_isHovered) {
        m_isHovered = false;
        redraw();
    }
}

void ChromeButton::press()
{
    if (!m_isEnabled) {
        return;
    }
    m_isPressed = true;
    redraw();
    if (menuProvider) {
        auto menu = menuProvider();
        if (!menu) {
            m_isPressed = false;
            redraw();
            return;
        }
        // The menu is the widget's child, so the widget outlives it; its owner may not.
        GtkWidget* widget = m_widget.get();
        PopupMenu::popup(widget, menu.get(), 0, gtk_widget_get_height(widget) + 4, [widget] {
            if (auto* button = ownerOf<ChromeButton>(widget)) {
                button->m_isPressed = false;
                button->redraw();
            }
        });
        return;
    }
    m_isTracking = true;
}

void ChromeButton::activate()
{
    if (!m_isEnabled) {
        return;
    }
    if (menuProvider) {
        press();
    } else if (onClick) {
        auto click = onClick;
        click();
    }
}

void ChromeButton::setFocusable(bool focusable)
{
    m_isFocusable = focusable;
    gtk_widget_set_focusable(m_widget.get(), focusable && m_isEnabled);
}

void ChromeButton::pointerMoved(double x, double y)
{
    if (!m_isTracking) {
        return;
    }
    bool inside = Drawing::contains(m_widget.get(), x, y);
    if (inside != m_isPressed) {
        m_isPressed = inside;
        redraw();
    }
}

void ChromeButton::release(double x, double y)
{
    if (!m_isTracking) {
        return;
    }
    m_isTracking = false;
    m_isPressed = false;
    redraw();
    if (Drawing::contains(m_widget.get(), x, y) && onClick) {
        auto click = onClick;
        click();
    }
}

void ChromeButton::cancelPress()
{
    if (m_isTracking) {
        m_isTracking = false;
        m_isPressed = false;
        redraw();
    }
}

Color ChromeButton::inkColor() const
{
    return ink ? ink() : Palette::passiveColor();
}

void ChromeButton::redraw()
{
    gtk_widget_queue_draw(m_widget.get());
}

void ChromeButton::snapshot(GtkSnapshot* snapshot)
{
    GtkWidget* widget = m_widget.get();
    double width = gtk_widget_get_width(widget);
    double height = gtk_widget_get_height(widget);
    Color base = inkColor();
    Color color = base;
    if (!m_isEnabled) {
        color = base.withAlpha(0.32);
    } else if (m_isPressed) {
        color = Theme::lift(base, 0.5);
    } else if (m_isHovered) {
        color = hoverInk ? hoverInk() : Theme::lift(base, 0.3);
    }

    if (m_drawsHoverBackground && m_isEnabled && (m_isHovered || m_isPressed)) {
        Drawing::fillRounded(
            snapshot, base.withAlpha(m_isPressed ? 0.28 : 0.16), Drawing::inset(Drawing::bounds(widget), 1, 1), 5);
    }
    // A symbol fills its button: the ring goes round it, outside the bounds.
    KeyboardFocus::drawRing(
        snapshot, widget, background ? background() : Palette::fieldColor(), m_content.isSymbol ? -3 : 0, 5);

    if (m_content.isSymbol) {
        int scale = gtk_widget_get_scale_factor(widget);
        GdkPaintable* image = SymbolCache::image(m_content.value, m_symbolPointSize, m_symbolWeight, scale);
        double side = SymbolCache::pixelSize(m_symbolPointSize);
        SymbolCache::draw(
            snapshot, image, std::round((width - side) / 2), std::round((height - side) / 2), side, color);
        return;
    }
    auto layout = Drawing::textLayout(widget, m_content.value, m_content.fontSize, m_content.fontWeight);
    graphene_size_t size = Drawing::layoutSize(layout.get());
    Drawing::drawLayout(
        snapshot, layout.get(), std::round((width - size.width) / 2), std::round((height - size.height) / 2), color);
}

} // namespace velder
