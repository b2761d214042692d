#include "shell/window/WindowChrome.h"

#include "bridge/VLDPermissionRequest.h"
#include "core/Format.h"
#include "core/PageShell.h"
#include "core/Palette.h"
#include "core/Theme.h"
#include "core/UrlHelper.h"
#include "shell/chrome/AddressBar.h"
#include "shell/chrome/ChromeButton.h"
#include "shell/chrome/LocationPin.h"
#include "shell/chrome/MenuAnchor.h"
#include "shell/chrome/TabStrip.h"
#include "shell/chrome/TitleBar.h"
#include "shell/chrome/Toolbar.h"
#include "shell/overlays/BlankSlate.h"
#include "shell/overlays/FindBar.h"
#include "shell/overlays/LinkStatus.h"
#include "shell/overlays/LocationPrompt.h"
#include "shell/overlays/UrlSuggestions.h"
#include "shell/tab/BrowserTab.h"
#include "shell/window/MainWindow.h"
#include "shell/window/MenuBar.h"
#include "shell/window/WindowMenus.h"

#include <string>

namespace velder {

WindowChrome::WindowChrome(GtkWindow* window, bool isPrivate)
    : m_window(window)
    , m_titleBar(std::make_unique<TitleBar>(isPrivate))
    , m_toolbar(std::make_unique<Toolbar>())
    , m_slate(std::make_unique<BlankSlate>())
    , m_findBar(std::make_unique<FindBar>())
    , m_linkStatus(std::make_unique<LinkStatus>())
    , m_locationBar(std::make_unique<LocationPrompt>())
    , m_suggestions(std::make_unique<UrlSuggestions>())
{
    gtk_window_set_titlebar(window, m_titleBar->widget());

    GtkWidget* content = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    m_menuBar = MenuBar::createMenuBarWidget();
    gtk_widget_set_visible(m_menuBar, false);
    gtk_box_append(GTK_BOX(content), m_menuBar);
    gtk_box_append(GTK_BOX(content), m_toolbar->widget());
    gtk_box_append(GTK_BOX(content), buildPageArea());

    // The suggestion list hangs over the page from under the address bar, so it lives in the window's
    // outermost overlay, placed from the address bar's bounds at each layout.
    GtkWidget* outer = gtk_overlay_new();
    gtk_overlay_set_child(GTK_OVERLAY(outer), content);
    gtk_overlay_add_overlay(GTK_OVERLAY(outer), m_suggestions->widget());
    gtk_widget_set_visible(m_suggestions->widget(), false);
    g_signal_connect(outer, "get-child-position", G_CALLBACK(placeSuggestions), this);
    gtk_window_set_child(window, outer);
}

WindowChrome::~WindowChrome()
{
    if (GtkWidget* outer = gtk_window_get_child(m_window)) {
        g_signal_handlers_disconnect_by_data(outer, this);
    }
}

GtkWidget* WindowChrome::buildPageArea()
{
    m_container = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_widget_set_vexpand(m_container, true);
    gtk_widget_set_hexpand(m_container, true);
    gtk_widget_add_css_class(m_container, "velder-container");
    gtk_widget_set_overflow(m_container, GTK_OVERFLOW_HIDDEN);

    GtkWidget* overlay = gtk_overlay_new();
    gtk_overlay_set_child(GTK_OVERLAY(overlay), m_container);
    gtk_widget_set_vexpand(overlay, true);

    m_pageMenuAnchor = MenuAnchor::create();
    gtk_overlay_add_overlay(GTK_OVERLAY(overlay), m_pageMenuAnchor);

    gtk_widget_set_visible(m_slate->widget(), false);
    gtk_overlay_add_overlay(GTK_OVERLAY(overlay), m_slate->widget());

    // Over the top of the page, under the find bar, which moves down while it shows.
    GtkWidget* strip = m_locationBar->widget();
    gtk_widget_set_halign(strip, GTK_ALIGN_FILL);
    gtk_widget_set_valign(strip, GTK_ALIGN_START);
    gtk_overlay_add_overlay(GTK_OVERLAY(overlay), strip);

    GtkWidget* bar = m_findBar->widget();
    gtk_widget_set_visible(bar, false);
    gtk_widget_set_halign(bar, GTK_ALIGN_END);
    gtk_widget_set_valign(bar, GTK_ALIGN_START);
    gtk_widget_set_margin_end(bar, 16);
    gtk_widget_set_margin_top(bar, 12);
    gtk_overlay_add_overlay(GTK_OVERLAY(overlay), bar);

    gtk_overlay_add_overlay(GTK_OVERLAY(overlay), m_linkStatus->widget());
    // The pointer over the page, seen on its way to the page: the link status makes way for it.
    GtkEventController* motion = gtk_event_controller_motion_new();
    gtk_event_controller_set_propagation_phase(motion, GTK_PHASE_CAPTURE);
    g_signal_connect(motion, "motion",
        G_CALLBACK(+[](GtkEventControllerMotion* controller, double x, double y, gpointer data) {
            GtkWidget* area = gtk_event_controller_get_widget(GTK_EVENT_CONTROLLER(controller));
            static_cast<LinkStatus*>(data)->pointerAt(x, y, gtk_widget_get_width(area), gtk_widget_get_height(area));
        }),
        m_linkStatus.get());
    gtk_widget_add_controller(overlay, motion);
    return overlay;
}

gboolean WindowChrome::placeSuggestions(GtkOverlay* overlay, GtkWidget* child, GdkRectangle* allocation, gpointer data)
{
    auto* self = static_cast<WindowChrome*>(data);
    graphene_rect_t bar;
    if (child != self->m_suggestions->widget()
        || !gtk_widget_compute_bounds(self->addressBar().widget(), GTK_WIDGET(overlay), &bar)) {
        return FALSE;
    }
    *allocation = { static_cast<int>(bar.origin.x), static_cast<int>(bar.origin.y + bar.size.height + 2),
        static_cast<int>(bar.size.width),
        static_cast<int>(UrlSuggestions::height(self->m_suggestions->entries().size())) };
    return TRUE;
}

void WindowChrome::connect(const std::weak_ptr<MainWindow>& weak)
{
    auto withSelf = [weak](auto run) {
        return [weak, run](auto... arguments) {
            if (auto self = weak.lock()) {
                run(*self, arguments...);
            }
        };
    };
    TabStrip& tabStrip = strip();
    tabStrip.onSelect = withSelf([](MainWindow& self, int index) {
        if (index >= 0) {
            self.selectTab(static_cast<std::size_t>(index));
        }
    });
    tabStrip.onClose = withSelf([](MainWindow& self, int index) {
        if (index >= 0) {
            self.closeTab(static_cast<std::size_t>(index));
        }
    });
    tabStrip.onReorder = withSelf([](MainWindow& self, int from, int to) {
        if (from >= 0 && to >= 0) {
            self.moveTab(static_cast<std::size_t>(from), static_cast<std::size_t>(to));
        }
    });
    tabStrip.onNewTab = withSelf([](MainWindow& self) { self.newTab(); });
    tabStrip.onContextMenu = [weak](int index) {
        auto self = weak.lock();
        return self && index >= 0 ? WindowMenus::tabMenu(*self, static_cast<std::size_t>(index))
                                  : GObjectPtr<GMenuModel>();
    };
    m_titleBar->wordmark().menuProvider = [] { return WindowMenus::wordmarkMenu(); };

    using Kind = BrowserAction::Kind;
    m_toolbar->onBack = withSelf([](MainWindow& self) { self.perform(Kind::back); });
    m_toolbar->onForward = withSelf([](MainWindow& self) { self.perform(Kind::forward); });
    m_toolbar->onReloadOrStop = withSelf([](MainWindow& self) {
        if (auto tab = self.activeTab()) {
            self.perform(tab->isLoading ? Kind::stop : Kind::reload);
        }
    });

    m_findBar->onQueryChanged = withSelf([](MainWindow& self, const std::string& text) {
        if (auto tab = self.activeTab()) {
            tab->find(text, true, false);
        }
    });
    m_findBar->onNext = withSelf([](MainWindow& self) { self.perform(Kind::findNext); });
    m_findBar->onPrev = withSelf([](MainWindow& self) { self.perform(Kind::findPrev); });
    m_findBar->onClose = withSelf([](MainWindow& self) { self.closeFindBar(); });

    auto resolve = withSelf([](MainWindow& self, LocationChoice choice) {
        if (auto tab = self.activeTab()) {
            tab->resolveLocation(choice);
        }
    });
    LocationPin& pin = addressBar().pin();
    pin.currentOrigin = [weak]() -> std::optional<std::string> {
        auto self = weak.lock();
        auto tab = self ? self->activeTab() : nullptr;
        return tab ? UrlHelper::origin(tab->url) : std::nullopt;
    };
    pin.onChoice = resolve;
    pin.onToggleGlobalSwitch = MainWindow::setLocationServices;
    m_locationBar->onChoice = resolve;
}

void WindowChrome::syncLocationBar(const BrowserTab* activeTab, bool locationEnabled)
{
    if (activeTab && activeTab->pendingLocationRequest && locationEnabled) {
        const std::string& requestOrigin = activeTab->pendingLocationRequest->origin();
        m_locationBar->show(UrlHelper::origin(requestOrigin).value_or(requestOrigin));
    } else {
        m_locationBar->hide();
    }
    // The find bar keeps clear of the strip's buttons.
    gtk_widget_set_margin_top(m_findBar->widget(), 12 + (m_locationBar->isShowing() ? LocationPrompt::height : 0));
}

std::string WindowChrome::geometry() const
{
    auto bounds = [root = GTK_WIDGET(m_window)](GtkWidget* widget) {
        graphene_rect_t r;
        if (!widget || !gtk_widget_compute_bounds(widget, root, &r)) {
            return std::string("0,0 0x0");
        }
        return format("%.0f,%.0f %.0fx%.0f", r.origin.x, r.origin.y, r.size.width, r.size.height);
    };
    auto children = [&](GtkWidget* parent) {
        std::string text;
        for (GtkWidget* child = gtk_widget_get_first_child(parent); child; child = gtk_widget_get_next_sibling(child)) {
            text += (text.empty() ? "" : ", ") + bounds(child);
        }
        return text;
    };
    GtkWidget* content = gtk_window_get_child(m_window);
    return "window " + bounds(GTK_WIDGET(m_window)) + ", content " + bounds(content) + ", toolbar "
        + bounds(m_toolbar->widget()) + ", address " + bounds(addressBar().widget()) + ", container "
        + bounds(m_container) + ", hosted [" + children(m_container) + "], content children [" + children(content)
        + "]";
}

TabStrip& WindowChrome::strip() const
{
    return m_titleBar->strip();
}

AddressBar& WindowChrome::addressBar() const
{
    return m_toolbar->addressBar();
}

void WindowChrome::applyTheme()
{
    static GtkCssProvider* provider = [] {
        GtkCssProvider* css = gtk_css_provider_new();
        gtk_style_context_add_provider_for_display(
            gdk_display_get_default(), GTK_STYLE_PROVIDER(css), GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
        return css;
    }();
    std::string style = ".velder-window { background-color: " + PageShell::hex(Palette::borderColor())
        + "; } .velder-container { background-color: " + PageShell::hex(Theme::fixedBackground)
        + "; } .velder-link-status { background-color: " + PageShell::hex(Palette::fieldColor()) + "; color: "
        + PageShell::hex(Theme::readable(Palette::textColor(), Palette::fieldColor())) + "; border: 1px solid "
        + PageShell::hex(Palette::borderColor()) + "; border-radius: 4px; padding: 2px 8px; font-size: 12px; }"
        + " .velder-prompt { background-color: " + PageShell::hex(Palette::fieldColor())
        + "; color: " + PageShell::hex(Theme::readable(Palette::textColor(), Palette::fieldColor()))
        + "; } .velder-prompt-title { font-weight: bold; font-size: 15px; }";
    gtk_css_provider_load_from_data(provider, style.c_str(), -1);
    m_titleBar->redraw();
    m_toolbar->redraw();
    gtk_widget_queue_draw(GTK_WIDGET(m_window));
}

} // namespace velder
