#include "shell/MainWindow.h"

#include "bridge/VLDBrowserView.h"
#include "bridge/VLDContextMenuInfo.h"
#include "core/AppInfo.h"
#include "core/Format.h"
#include "core/Log.h"
#include "core/PageShell.h"
#include "core/Palette.h"
#include "core/Shortcuts.h"
#include "core/Theme.h"
#include "core/UrlHelper.h"
#include "core/Vault.h"
#include "shell/AddressBar.h"
#include "shell/AppDelegate.h"
#include "shell/BlankSlate.h"
#include "shell/BrowserTab.h"
#include "shell/ChromeButton.h"
#include "shell/FindBar.h"
#include "shell/InternalAddressGuard.h"
#include "shell/KeyEvents.h"
#include "shell/MenuAnchor.h"
#include "shell/MenuBar.h"
#include "shell/TabStrip.h"
#include "shell/Themed.h"
#include "shell/TitlebarRow.h"
#include "shell/ToolbarRow.h"
#include "shell/UpdateSlot.h"
#include "shell/UrlSuggestions.h"
#include "shell/WindowRegistry.h"
#include "shell/X11Placement.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace velder {

namespace {

constexpr const char* ownerKey = "velder-main-window";

std::string rectText(const graphene_rect_t& rect)
{
    return format("%.0f,%.0f %.0fx%.0f", rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
}

std::string boundsIn(GtkWidget* widget, GtkWidget* ancestor)
{
    graphene_rect_t bounds;
    if (!widget || !gtk_widget_compute_bounds(widget, ancestor, &bounds)) {
        return "0,0 0x0";
    }
    return rectText(bounds);
}

} // namespace

// MARK: - Creation

std::shared_ptr<MainWindow> MainWindow::create(Rect frame, bool isPrivate, bool hasOwnPlacement)
{
    std::shared_ptr<MainWindow> window(new MainWindow(frame, isPrivate, hasOwnPlacement));
    window->buildChrome();
    return window;
}

std::shared_ptr<MainWindow> MainWindow::create(const WindowSession& session)
{
    std::optional<Rect> frame = WindowPlacement::frameFromSession(session, visibleFrames());
    auto window = create(frame.value_or(defaultFrame()), false, frame.has_value());
    for (const std::string& url : session.tabs) {
        window->install(BrowserTab::create(url, false), false);
    }
    if (!window->tabs.empty()) {
        auto last = static_cast<std::int64_t>(window->tabs.size()) - 1;
        window->selectTab(static_cast<std::size_t>(std::min(std::max<std::int64_t>(session.activeTab, 0), last)));
    }
    return window;
}

MainWindow::MainWindow(Rect frame, bool isPrivate, bool ownPlacement)
    : hasOwnPlacement(ownPlacement)
    , frameBeforeNonNormalState(frame)
    , m_isPrivate(isPrivate)
{
    // Velder's chrome is dark whatever the desktop's theme, and so are the parts GTK draws for it.
    g_object_set(gtk_settings_get_default(), "gtk-application-prefer-dark-theme", TRUE, nullptr);
    m_window = GObjectPtr<GtkWindow>::retain(GTK_WINDOW(gtk_window_new()));
    g_object_set_data(G_OBJECT(m_window.get()), ownerKey, this);
    if (GApplication* application = g_application_get_default(); GTK_IS_APPLICATION(application)) {
        gtk_window_set_application(m_window.get(), GTK_APPLICATION(application));
    }
    gtk_window_set_title(m_window.get(), "Velder");
    gtk_window_set_default_size(m_window.get(), static_cast<int>(frame.width), static_cast<int>(frame.height));
    gtk_widget_set_size_request(GTK_WIDGET(m_window.get()), 560, 360);
    gtk_widget_add_css_class(GTK_WIDGET(m_window.get()), "velder-window");
    applyFrame(frame);
    g_signal_connect(m_window.get(), "close-request", G_CALLBACK(onCloseRequest), this);
}

MainWindow::~MainWindow()
{
    if (m_window) {
        g_signal_handlers_disconnect_by_data(m_window.get(), this);
        g_object_set_data(G_OBJECT(m_window.get()), ownerKey, nullptr);
        if (!m_isClosed) {
            gtk_window_destroy(m_window.get());
        }
    }
}

MainWindow* MainWindow::fromWindow(GtkWindow* window)
{
    return window ? static_cast<MainWindow*>(g_object_get_data(G_OBJECT(window), ownerKey)) : nullptr;
}

void MainWindow::buildChrome()
{
    installActions();
    buildTitlebar();

    GtkWidget* content = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    GtkWidget* menuBar = MenuBar::createMenuBarWidget();
    gtk_widget_set_visible(menuBar, false);
    g_object_set_data(G_OBJECT(m_window.get()), "velder-menubar", menuBar);
    gtk_box_append(GTK_BOX(content), menuBar);

    buildToolbar();
    gtk_box_append(GTK_BOX(content), m_toolbarRow->widget());

    m_container = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_widget_set_vexpand(m_container, true);
    gtk_widget_set_hexpand(m_container, true);
    gtk_widget_add_css_class(m_container, "velder-container");
    gtk_widget_set_overflow(m_container, GTK_OVERFLOW_HIDDEN);

    m_overlay = gtk_overlay_new();
    gtk_overlay_set_child(GTK_OVERLAY(m_overlay), m_container);
    gtk_widget_set_vexpand(m_overlay, true);
    gtk_box_append(GTK_BOX(content), m_overlay);

    m_pageMenuAnchor = MenuAnchor::create();
    gtk_overlay_add_overlay(GTK_OVERLAY(m_overlay), m_pageMenuAnchor);

    m_slate = std::make_unique<BlankSlate>();
    gtk_widget_set_visible(m_slate->widget(), false);
    gtk_overlay_add_overlay(GTK_OVERLAY(m_overlay), m_slate->widget());

    m_findBar = std::make_unique<FindBar>();
    gtk_widget_set_visible(m_findBar->widget(), false);
    gtk_widget_set_halign(m_findBar->widget(), GTK_ALIGN_END);
    gtk_widget_set_valign(m_findBar->widget(), GTK_ALIGN_START);
    gtk_widget_set_margin_end(m_findBar->widget(), 16);
    gtk_widget_set_margin_top(m_findBar->widget(), 12);
    gtk_overlay_add_overlay(GTK_OVERLAY(m_overlay), m_findBar->widget());

    gtk_window_set_child(m_window.get(), content);

    // The suggestion list hangs over the page from under the address bar, so it lives in the window's
    // outermost overlay: positioned from the address bar's bounds at each layout.
    m_suggestions = std::make_unique<UrlSuggestions>();
    GtkWidget* outer = gtk_overlay_new();
    g_object_ref(content);
    gtk_window_set_child(m_window.get(), nullptr);
    gtk_overlay_set_child(GTK_OVERLAY(outer), content);
    g_object_unref(content);
    gtk_overlay_add_overlay(GTK_OVERLAY(outer), m_suggestions->widget());
    gtk_widget_set_visible(m_suggestions->widget(), false);
    g_signal_connect(outer, "get-child-position",
        G_CALLBACK(+[](GtkOverlay* overlay, GtkWidget* child, GdkRectangle* allocation, gpointer data) -> gboolean {
            auto* self = static_cast<MainWindow*>(data);
            if (child != self->m_suggestions->widget()) {
                return FALSE;
            }
            graphene_rect_t bar;
            if (!gtk_widget_compute_bounds(self->m_addressBar->widget(), GTK_WIDGET(overlay), &bar)) {
                return FALSE;
            }
            allocation->x = static_cast<int>(bar.origin.x);
            allocation->y = static_cast<int>(bar.origin.y + bar.size.height + 2);
            allocation->width = static_cast<int>(bar.size.width);
            allocation->height = static_cast<int>(UrlSuggestions::height(self->m_suggestions->entries().size()));
            return TRUE;
        }),
        this);
    gtk_window_set_child(m_window.get(), outer);

    wireAddressBar();
    wireFindBar();

    // The window's own key path runs after the focused widget had its chance (the address bar keeps its
    // editing keys); the engine's key hook covers the keys pressed in a page.
    GtkEventController* keys = gtk_event_controller_key_new();
    gtk_event_controller_set_propagation_phase(keys, GTK_PHASE_BUBBLE);
    g_signal_connect(keys, "key-pressed",
        G_CALLBACK(+[](GtkEventControllerKey*, guint keyval, guint, GdkModifierType state, gpointer data) -> gboolean {
            return static_cast<MainWindow*>(data)->handleKeyPress(keyval, state);
        }),
        this);
    gtk_widget_add_controller(GTK_WIDGET(m_window.get()), keys);
    MenuBar::attachRevealKeys(m_window.get(), menuBar);

    g_signal_connect(m_window.get(), "notify::default-width", G_CALLBACK(onSizeChanged), this);
    g_signal_connect(m_window.get(), "notify::default-height", G_CALLBACK(onSizeChanged), this);
    g_signal_connect(m_window.get(), "notify::maximized", G_CALLBACK(onStateChanged), this);
    g_signal_connect(m_window.get(), "notify::fullscreened", G_CALLBACK(onStateChanged), this);

    applyTheme();
    std::weak_ptr<MainWindow> weak = weak_from_this();
    m_themeToken = Themed::subscribeToTheme(GTK_WIDGET(m_window.get()), [weak] {
        if (auto self = weak.lock()) {
            self->applyTheme();
        }
    });
    m_settingsToken = NotificationCenter::defaultCenter().addObserver(
        Vault::settingsDidChangeNotification, [weak](const Notification&) {
            // Settings change on whatever thread saved them; the chrome follows on the main loop.
            g_idle_add_once(
                +[](gpointer data) {
                    auto* held = static_cast<std::weak_ptr<MainWindow>*>(data);
                    if (auto self = held->lock()) {
                        self->syncLocationBar();
                        self->refreshChrome();
                    }
                    delete held;
                },
                new std::weak_ptr<MainWindow>(weak));
        });
}

void MainWindow::buildTitlebar()
{
    m_titlebarRow = std::make_unique<TitlebarRow>();

    m_titlebarRow->append(gtk_window_controls_new(GTK_PACK_START));

    m_strip = std::make_unique<TabStrip>();
    gtk_widget_set_hexpand(m_strip->widget(), true);
    gtk_widget_set_margin_end(m_strip->widget(), 6);
    m_titlebarRow->append(m_strip->widget());

    std::string version = AppInfo::version();
    std::string wordmarkText = (m_isPrivate ? "Private \xe2\x80\x94 Velder v" : "Velder v") + version;
    m_wordmark
        = std::make_unique<ChromeButton>(ChromeButton::Content::text(wordmarkText, 11, PANGO_WEIGHT_SEMIBOLD), "");
    bool isPrivateWindow = m_isPrivate;
    m_wordmark->ink = [isPrivateWindow] {
        return Theme::readable(
            isPrivateWindow ? Palette::highlightColor() : Palette::passiveColor(), Palette::borderColor());
    };
    std::weak_ptr<MainWindow> weak = weak_from_this();
    m_wordmark->menuProvider = [weak] {
        auto self = weak.lock();
        return GObjectPtr<GMenuModel>::adopt(self ? self->wordmarkMenu() : G_MENU_MODEL(g_menu_new()));
    };
    gtk_widget_set_size_request(m_wordmark->widget(), static_cast<int>(std::ceil(m_wordmark->contentWidth() + 16)), 22);
    gtk_widget_set_valign(m_wordmark->widget(), GTK_ALIGN_CENTER);
    gtk_widget_set_margin_end(m_wordmark->widget(), 4);
    m_titlebarRow->append(m_wordmark->widget());

    m_updateSlot = std::make_unique<UpdateSlot>(UpdateState::idle());
    gtk_widget_set_valign(m_updateSlot->widget(), GTK_ALIGN_CENTER);
    gtk_widget_set_margin_end(m_updateSlot->widget(), 8);
    m_titlebarRow->append(m_updateSlot->widget());
    m_titlebarRow->append(gtk_window_controls_new(GTK_PACK_END));

    m_strip->onSelect = [weak](int index) {
        if (auto self = weak.lock(); self && index >= 0) {
            self->selectTab(static_cast<std::size_t>(index));
        }
    };
    m_strip->onClose = [weak](int index) {
        if (auto self = weak.lock(); self && index >= 0) {
            self->closeTab(static_cast<std::size_t>(index));
        }
    };
    m_strip->onReorder = [weak](int from, int to) {
        if (auto self = weak.lock(); self && from >= 0 && to >= 0) {
            self->moveTab(static_cast<std::size_t>(from), static_cast<std::size_t>(to));
        }
    };
    m_strip->onNewTab = [weak] {
        if (auto self = weak.lock()) {
            self->newTab();
        }
    };
    m_strip->onContextMenu = [weak](int index) {
        auto self = weak.lock();
        return GObjectPtr<GMenuModel>::adopt(
            self && index >= 0 ? self->tabContextMenu(static_cast<std::size_t>(index)) : nullptr);
    };

    // Bare parts of the row drag the window.
    GtkWidget* handle = gtk_window_handle_new();
    gtk_window_handle_set_child(GTK_WINDOW_HANDLE(handle), m_titlebarRow->widget());
    gtk_window_set_titlebar(m_window.get(), handle);
}

void MainWindow::buildToolbar()
{
    m_toolbarRow = std::make_unique<ToolbarRow>();
    auto buttonInk = [] { return Theme::readable(Palette::textColor(), Palette::fieldColor()); };
    std::weak_ptr<MainWindow> weak = weak_from_this();
    auto makeButton = [&](const char* symbol, const char* label, int leading) {
        auto button = std::make_unique<ChromeButton>(ChromeButton::Content::symbol(symbol), label);
        button->ink = buttonInk;
        gtk_widget_set_size_request(button->widget(), 28, 26);
        gtk_widget_set_valign(button->widget(), GTK_ALIGN_CENTER);
        gtk_widget_set_margin_start(button->widget(), leading);
        m_toolbarRow->append(button->widget());
        return button;
    };
    m_backButton = makeButton("go-previous-symbolic", "Back", 8);
    m_forwardButton = makeButton("go-next-symbolic", "Forward", 2);
    m_reloadButton = makeButton("view-refresh-symbolic", "Reload", 2);
    m_backButton->onClick = [weak] {
        if (auto self = weak.lock(); self && self->activeTab()) {
            self->activeTab()->view()->goBack();
        }
    };
    m_forwardButton->onClick = [weak] {
        if (auto self = weak.lock(); self && self->activeTab()) {
            self->activeTab()->view()->goForward();
        }
    };
    m_reloadButton->onClick = [weak] {
        if (auto self = weak.lock(); self && self->activeTab()) {
            self->perform(self->activeTab()->isLoading ? BrowserAction::Kind::stop : BrowserAction::Kind::reload);
        }
    };

    m_addressBar = std::make_unique<AddressBar>();
    gtk_widget_set_hexpand(m_addressBar->widget(), true);
    gtk_widget_set_size_request(m_addressBar->widget(), -1, 28);
    gtk_widget_set_valign(m_addressBar->widget(), GTK_ALIGN_CENTER);
    gtk_widget_set_margin_start(m_addressBar->widget(), 8);
    gtk_widget_set_margin_end(m_addressBar->widget(), 10);
    m_toolbarRow->append(m_addressBar->widget());
}

void MainWindow::applyTheme()
{
    // The widgets follow the theme by themselves; the window's own surfaces are styled here: its background
    // in the border colour, the page area in the fixed background.
    static GtkCssProvider* provider = [] {
        GtkCssProvider* css = gtk_css_provider_new();
        gtk_style_context_add_provider_for_display(
            gdk_display_get_default(), GTK_STYLE_PROVIDER(css), GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
        return css;
    }();
    std::string style = ".velder-window { background-color: " + PageShell::hex(Palette::borderColor())
        + "; } .velder-container { background-color: " + PageShell::hex(Theme::fixedBackground) + "; }";
    gtk_css_provider_load_from_data(provider, style.c_str(), -1);
    for (ChromeButton* button : { m_wordmark.get(), m_backButton.get(), m_forwardButton.get(), m_reloadButton.get() }) {
        gtk_widget_queue_draw(button->widget());
    }
    gtk_widget_queue_draw(GTK_WIDGET(m_window.get()));
}

// MARK: - Tabs

std::shared_ptr<BrowserTab> MainWindow::activeTab() const
{
    return activeIndex < tabs.size() ? tabs[activeIndex] : nullptr;
}

void MainWindow::install(std::shared_ptr<BrowserTab> tab, bool activate)
{
    std::weak_ptr<MainWindow> weak = weak_from_this();
    std::weak_ptr<BrowserTab> weakTab = tab;
    tab->onStateChanged = [weak](BrowserTab& changed) {
        auto self = weak.lock();
        if (self && std::any_of(self->tabs.begin(), self->tabs.end(), [&](auto& t) { return t.get() == &changed; })) {
            self->refreshChrome();
        }
    };
    tab->onFindResult = [weak](BrowserTab& changed) {
        if (auto self = weak.lock(); self && self->activeTab().get() == &changed) {
            self->m_findBar->setResult(changed.findMatchCount, changed.findActiveMatch);
        }
    };
    tab->makePopupHost = [weak](const std::string&) -> std::shared_ptr<VLDBrowserView> {
        auto self = weak.lock();
        if (!self) {
            return nullptr;
        }
        auto popup = BrowserTab::createPopupHost(self->m_isPrivate);
        self->install(popup, true);
        return popup->view();
    };
    tab->onBrowserDestroyed = [weak](BrowserTab& destroyed) {
        if (auto self = weak.lock()) {
            self->dispose(destroyed.shared_from_this());
        }
    };
    tab->onEngineRequestedTearDown = [weak](BrowserTab& closing) {
        if (auto self = weak.lock(); self && gtk_widget_get_parent(closing.view()->widget()) == self->m_container) {
            gtk_box_remove(GTK_BOX(self->m_container), closing.view()->widget());
        }
    };
    tab->handleKey = [weak](BrowserAction action) {
        auto self = weak.lock();
        if (!self) {
            return false;
        }
        if (action.kind == BrowserAction::Kind::stop && self->findBarIsShowing()) {
            self->closeFindBar();
        } else {
            self->perform(action);
        }
        return true;
    };
    tab->showContextMenu = [weak](const VLDContextMenuInfo& info) {
        auto self = weak.lock();
        return self ? self->showPageContextMenu(info) : true;
    };
    tab->onLocationRequestChanged = [weak](BrowserTab& changed) {
        if (auto self = weak.lock(); self && self->activeTab().get() == &changed) {
            self->syncLocationBar();
        }
    };
    tab->openURLInNewTab = [weak](const std::string& url, bool foreground) {
        auto self = weak.lock();
        if (!self) {
            return false;
        }
        self->install(BrowserTab::create(url, self->m_isPrivate), foreground);
        return true;
    };

    GtkWidget* view = tab->view()->widget();
    gtk_widget_set_hexpand(view, true);
    gtk_widget_set_vexpand(view, true);
    gtk_widget_set_visible(view, false);
    gtk_box_append(GTK_BOX(m_container), view);
    tab->view()->setZoomLevel(AppDelegate::zoomLevel);
    tabs.push_back(std::move(tab));
    if (activate || tabs.size() == 1) {
        selectTab(tabs.size() - 1);
    } else {
        refreshChrome();
    }
}

void MainWindow::selectTab(std::size_t index)
{
    if (index >= tabs.size()) {
        return;
    }
    activeIndex = index;
    for (std::size_t i = 0; i < tabs.size(); ++i) {
        gtk_widget_set_visible(tabs[i]->view()->widget(), i == index);
    }
    if (findBarIsShowing()) {
        closeFindBar();
    }
    syncLocationBar();
    refreshChrome();
    focusForActiveTab();
}

void MainWindow::closeTab(std::size_t index)
{
    if (index >= tabs.size()) {
        return;
    }
    if (tabs.size() == 1) {
        performClose();
        return;
    }
    std::shared_ptr<BrowserTab> tab = tabs[index];
    tab->refuseParkedLocationRequest();
    if (!tab->isPrivate()) {
        if (AppDelegate* delegate = AppDelegate::shared()) {
            delegate->rememberClosedTab(tab->url);
        }
    }
    if (tab->view()->hasBrowser()) {
        m_tabsAwaitingClose.push_back(tab);
        tab->view()->requestClose();
    } else {
        dispose(tab);
    }
}

void MainWindow::dispose(const std::shared_ptr<BrowserTab>& tab)
{
    std::erase(m_tabsAwaitingClose, tab);
    auto found = std::find(tabs.begin(), tabs.end(), tab);
    if (found == tabs.end()) {
        return;
    }
    auto index = static_cast<std::size_t>(found - tabs.begin());
    if (gtk_widget_get_parent(tab->view()->widget()) == m_container) {
        gtk_box_remove(GTK_BOX(m_container), tab->view()->widget());
    }
    tabs.erase(found);
    if (m_isClosing) {
        if (tabs.empty()) {
            close();
        }
        return;
    }
    if (tabs.empty()) {
        close();
        return;
    }
    // The tab now standing at the removed one's place becomes active, whichever was active before.
    selectTab(std::min(index, tabs.size() - 1));
}

void MainWindow::moveTab(std::size_t from, std::size_t to)
{
    if (from >= tabs.size() || to >= tabs.size() || from == to) {
        return;
    }
    auto tab = tabs[from];
    tabs.erase(tabs.begin() + static_cast<std::ptrdiff_t>(from));
    tabs.insert(tabs.begin() + static_cast<std::ptrdiff_t>(to), tab);
    if (activeIndex == from) {
        activeIndex = to;
    } else if (from < activeIndex && activeIndex <= to) {
        --activeIndex;
    } else if (to <= activeIndex && activeIndex < from) {
        ++activeIndex;
    }
    refreshChrome();
}

void MainWindow::requestCloseBrowsers()
{
    m_isClosing = true;
    for (const auto& tab : tabs) {
        tab->refuseParkedLocationRequest();
    }
    for (const auto& tab : std::vector(tabs)) {
        tab->view()->requestClose();
    }
}

void MainWindow::tabMenuCloseOthers(std::size_t index)
{
    if (index >= tabs.size()) {
        return;
    }
    auto chosen = tabs[index];
    for (const auto& tab : std::vector(tabs)) {
        if (tab == chosen) {
            continue;
        }
        auto found = std::find(tabs.begin(), tabs.end(), tab);
        if (found != tabs.end()) {
            closeTab(static_cast<std::size_t>(found - tabs.begin()));
        }
    }
}

void MainWindow::tabMenuCloseToRight(std::size_t index)
{
    if (index >= tabs.size()) {
        return;
    }
    std::vector<std::shared_ptr<BrowserTab>> right(tabs.begin() + static_cast<std::ptrdiff_t>(index) + 1, tabs.end());
    for (const auto& tab : right) {
        auto found = std::find(tabs.begin(), tabs.end(), tab);
        if (found != tabs.end()) {
            closeTab(static_cast<std::size_t>(found - tabs.begin()));
        }
    }
}

void MainWindow::tabMenuDuplicate(std::size_t index)
{
    if (index < tabs.size()) {
        install(BrowserTab::create(tabs[index]->url, m_isPrivate), true);
    }
}

// MARK: - Closing the window

gboolean MainWindow::onCloseRequest(GtkWindow*, gpointer data)
{
    auto* self = static_cast<MainWindow*>(data);
    if (self->windowShouldClose()) {
        self->close();
    }
    return TRUE; // the window goes through close(), never on its own
}

bool MainWindow::windowShouldClose()
{
    bool anyBrowser = std::any_of(tabs.begin(), tabs.end(), [](auto& tab) { return tab->view()->hasBrowser(); });
    if (!anyBrowser) {
        return true;
    }
    if (m_isClosing) {
        return false;
    }
    m_isClosing = true;
    for (const auto& tab : tabs) {
        tab->refuseParkedLocationRequest();
    }
    for (const auto& tab : std::vector(tabs)) {
        if (tab->view()->hasBrowser()) {
            tab->view()->requestClose();
        }
    }
    return false;
}

void MainWindow::performClose()
{
    if (windowShouldClose()) {
        close();
    }
}

void MainWindow::close()
{
    if (m_isClosed) {
        return;
    }
    m_isClosed = true;
    auto self = shared_from_this(); // the registry may hold the last reference
    windowWillClose();
    g_signal_handlers_disconnect_by_data(m_window.get(), this);
    gtk_window_destroy(m_window.get());
}

void MainWindow::windowWillClose()
{
    WindowRegistry::shared().remove(this);
    WindowRegistry::shared().capture();
}

// MARK: - Commands

void MainWindow::newTab()
{
    m_focusAddressOnNextActivation = true;
    std::string url = m_isPrivate ? "about:blank" : Vault::shared().snapshot()->settings.newTabPage;
    install(BrowserTab::create(url, m_isPrivate), true);
    m_focusAddressOnNextActivation = false;
}

void MainWindow::perform(BrowserAction action)
{
    using Kind = BrowserAction::Kind;
    auto tab = activeTab();
    AppDelegate* delegate = AppDelegate::shared();
    switch (action.kind) {
    case Kind::selectTab:
        if (action.tab >= 1) {
            selectTab(static_cast<std::size_t>(action.tab - 1));
        }
        break;
    case Kind::newTab:
        newTab();
        break;
    case Kind::closeTab:
        closeTab(activeIndex);
        break;
    case Kind::closeWindow:
        performClose();
        break;
    case Kind::reopenClosedTab:
        if (delegate) {
            delegate->reopenClosedTab(this);
        }
        break;
    case Kind::nextTab:
        if (!tabs.empty()) {
            selectTab((activeIndex + 1) % tabs.size());
        }
        break;
    case Kind::prevTab:
        if (!tabs.empty()) {
            selectTab((activeIndex + tabs.size() - 1) % tabs.size());
        }
        break;
    case Kind::selectLastTab:
        if (!tabs.empty()) {
            selectTab(tabs.size() - 1);
        }
        break;
    case Kind::newWindow:
        if (delegate) {
            delegate->openWindow(Vault::shared().snapshot()->settings.homepage, this);
        }
        break;
    case Kind::newPrivateWindow:
        if (delegate) {
            delegate->openPrivateWindow(this);
        }
        break;
    case Kind::focusAddressBar:
        m_addressBar->focusAndSelectAll();
        break;
    case Kind::find:
        openFindBar();
        break;
    case Kind::findNext:
    case Kind::findPrev:
        if (!findBarIsShowing()) {
            openFindBar();
        } else if (action.kind == Kind::findNext && m_findBar->onNext) {
            m_findBar->onNext();
        } else if (action.kind == Kind::findPrev && m_findBar->onPrev) {
            m_findBar->onPrev();
        }
        break;
    case Kind::reload:
        if (tab) {
            tab->view()->reload();
        }
        break;
    case Kind::hardReload:
        if (tab) {
            tab->view()->reloadIgnoringCache();
        }
        break;
    case Kind::stop:
        if (tab) {
            tab->view()->stopLoading();
        }
        break;
    case Kind::back:
        if (tab) {
            tab->view()->goBack();
        }
        break;
    case Kind::forward:
        if (tab) {
            tab->view()->goForward();
        }
        break;
    case Kind::home:
        if (tab) {
            navigateActiveTab(m_isPrivate ? "about:blank" : Vault::shared().snapshot()->settings.homepage);
        }
        break;
    case Kind::zoomIn:
    case Kind::zoomOut:
    case Kind::zoomReset:
        if (delegate) {
            double level = action.kind == Kind::zoomReset
                ? 0.0
                : AppDelegate::zoomLevel + (action.kind == Kind::zoomIn ? 1.0 : -1.0);
            delegate->setZoom(level, this);
        }
        break;
    case Kind::devTools:
        if (tab) {
            tab->view()->showDevTools();
        }
        break;
    case Kind::history:
        openInternalPage(InternalRoute::history);
        break;
    case Kind::settings:
        openInternalPage(InternalRoute::settings);
        break;
    }
}

bool MainWindow::isActionEnabled(BrowserAction action) const
{
    using Kind = BrowserAction::Kind;
    auto tab = activeTab();
    switch (action.kind) {
    case Kind::reopenClosedTab:
        return AppDelegate::shared() && !AppDelegate::shared()->closedTabs().empty();
    case Kind::stop:
        return tab && tab->isLoading;
    case Kind::back:
        return tab && tab->canGoBack;
    case Kind::forward:
        return tab && tab->canGoForward;
    case Kind::findNext:
    case Kind::findPrev:
        return findBarIsShowing() || tab;
    default:
        return true;
    }
}

void MainWindow::navigateActiveTab(const std::string& url)
{
    auto tab = activeTab();
    if (!tab) {
        return;
    }
    tab->view()->loadURL(url);
    tab->view()->setRefusesNavigationFocus(false);
    gtk_window_set_focus(m_window.get(), nullptr);
    tab->view()->setBrowserFocus(true);
}

void MainWindow::focusForActiveTab()
{
    auto tab = activeTab();
    if (!tab) {
        return;
    }
    if (!m_focusAddressOnNextActivation && !UrlHelper::isBlank(tab->url)) {
        tab->view()->setRefusesNavigationFocus(false);
        gtk_window_set_focus(m_window.get(), nullptr);
        tab->view()->setBrowserFocus(true);
    } else {
        tab->view()->setRefusesNavigationFocus(true);
        tab->view()->setBrowserFocus(false);
        m_addressBar->focusAndSelectAll();
    }
}

void MainWindow::refreshChrome()
{
    auto tab = activeTab();
    std::vector<TabStrip::Item> items;
    for (const auto& each : tabs) {
        items.push_back({ each->displayTitle() });
    }
    m_strip->setTabs(items, static_cast<int>(activeIndex));
    m_backButton->setEnabled(tab && tab->canGoBack);
    m_forwardButton->setEnabled(tab && tab->canGoForward);
    bool loading = tab && tab->isLoading;
    m_reloadButton->setContent(
        ChromeButton::Content::symbol(loading ? "window-close-symbolic" : "view-refresh-symbolic"));
    m_reloadButton->setAccessibilityLabel(loading ? "Stop" : "Reload");
    if (!m_addressBar->isEditing()) {
        m_addressBar->setText(tab ? tab->url : "");
    }
    m_addressBar->pin().setLit(tab && tab->isLocationLit());
    m_addressBar->pin().setShown(
        Vault::shared().snapshot()->settings.locationEnabled && tab && UrlHelper::origin(tab->url).has_value());
    gtk_window_set_title(m_window.get(), tab ? tab->displayTitle().c_str() : "Velder");
    gtk_widget_set_visible(m_slate->widget(), !tab || UrlHelper::isBlank(tab->url));
    updateActionStates();
}

bool MainWindow::slateIsShowing() const
{
    return gtk_widget_get_visible(m_slate->widget());
}

void MainWindow::openInternalPage(InternalRoute route)
{
    if (route == InternalRoute::settings && revealExistingSettingsTab()) {
        return;
    }
    std::string url = InternalRoutes::url(route);
    if (!m_isPrivate) {
        install(BrowserTab::create(url, false), true);
        return;
    }
    // Internal pages never open in a private window.
    if (auto ordinary = WindowRegistry::shared().firstOrdinaryWindow()) {
        ordinary->install(BrowserTab::create(url, false), true);
        ordinary->makeKeyAndOrderFront();
    } else if (AppDelegate* delegate = AppDelegate::shared()) {
        delegate->openWindow(url, this);
    }
}

bool MainWindow::revealExistingSettingsTab()
{
    auto isSettings = [](const std::shared_ptr<BrowserTab>& tab) {
        auto route = InternalRoutes::parse(tab->url);
        return route && route->first == InternalRoute::settings;
    };
    auto reveal = [&](MainWindow& window) {
        for (std::size_t i = 0; i < window.tabs.size(); ++i) {
            if (isSettings(window.tabs[i])) {
                window.selectTab(i);
                return true;
            }
        }
        return false;
    };
    if (reveal(*this)) {
        return true;
    }
    for (const auto& other : WindowRegistry::shared().others(this)) {
        if (reveal(*other)) {
            other->makeKeyAndOrderFront();
            return true;
        }
    }
    return false;
}

// MARK: - Address bar and find bar

void MainWindow::wireAddressBar()
{
    std::weak_ptr<MainWindow> weak = weak_from_this();
    m_addressBar->onCommit = [weak](const std::string& text) {
        auto self = weak.lock();
        if (!self) {
            return;
        }
        UrlSuggestions& list = *self->m_suggestions;
        if (auto selected = list.selectedIndex();
            selected && *selected >= 0 && static_cast<std::size_t>(*selected) < list.entries().size()) {
            std::string url = list.entries()[static_cast<std::size_t>(*selected)].url;
            list.clear();
            self->navigateActiveTab(url);
            return;
        }
        list.clear();
        auto target = UrlHelper::navigationTarget(text, Vault::shared().snapshot()->settings.searchTemplate);
        if (!target) {
            self->m_addressBar->beep();
            return;
        }
        self->navigateActiveTab(*target);
    };
    m_addressBar->onTextChanged = [weak](const std::string& text) {
        if (auto self = weak.lock()) {
            self->m_suggestions->update(text);
            gtk_widget_queue_resize(gtk_widget_get_parent(self->m_suggestions->widget()));
        }
    };
    m_addressBar->onMoveSelection = [weak](int delta) {
        auto self = weak.lock();
        if (!self || !self->m_suggestions->isShowing()) {
            return false;
        }
        self->m_suggestions->moveSelection(delta);
        if (auto selected = self->m_suggestions->selectedIndex()) {
            self->m_addressBar->setText(self->m_suggestions->entries()[static_cast<std::size_t>(*selected)].url);
        }
        return true;
    };
    m_addressBar->onCancel = [weak] {
        auto self = weak.lock();
        if (!self || !self->m_suggestions->isShowing()) {
            return false;
        }
        self->m_suggestions->clear();
        return true;
    };
    m_addressBar->onFocusChanged = [weak](bool focused) {
        auto self = weak.lock();
        if (!self) {
            return;
        }
        if (!focused) {
            self->m_suggestions->clear();
            if (auto tab = self->activeTab()) {
                tab->view()->setRefusesNavigationFocus(false);
            }
        }
        gtk_widget_queue_draw(self->m_addressBar->widget());
    };
    m_suggestions->onAccept = [weak](const HistoryEntry& entry) {
        if (auto self = weak.lock()) {
            std::string url = entry.url;
            self->m_suggestions->clear();
            self->navigateActiveTab(url);
        }
    };
}

void MainWindow::wireFindBar()
{
    std::weak_ptr<MainWindow> weak = weak_from_this();
    m_findBar->onQueryChanged = [weak](const std::string& text) {
        if (auto self = weak.lock(); self && self->activeTab()) {
            self->activeTab()->find(text, true, false);
        }
    };
    m_findBar->onNext = [weak] {
        if (auto self = weak.lock(); self && self->activeTab()) {
            self->activeTab()->find(self->m_findBar->text(), true, true);
        }
    };
    m_findBar->onPrev = [weak] {
        if (auto self = weak.lock(); self && self->activeTab()) {
            self->activeTab()->find(self->m_findBar->text(), false, true);
        }
    };
    m_findBar->onClose = [weak] {
        if (auto self = weak.lock()) {
            self->closeFindBar();
        }
    };
}

void MainWindow::openFindBar()
{
    m_findBar->open();
}

void MainWindow::closeFindBar()
{
    if (auto tab = activeTab()) {
        tab->findMatchCount = 0;
        tab->findActiveMatch = 0;
        tab->view()->stopFindingAndClearSelection(true);
    }
    m_findBar->hide();
    if (auto tab = activeTab()) {
        gtk_window_set_focus(m_window.get(), nullptr);
        tab->view()->setBrowserFocus(true);
    }
}

bool MainWindow::findBarIsShowing() const
{
    return m_findBar->isShowing();
}

void MainWindow::syncLocationBar()
{
    // The location prompt strip arrives with the location prompt; the pin follows refreshChrome.
}

// MARK: - Keys

bool MainWindow::handleKeyPress(guint keyval, GdkModifierType state)
{
    std::string key = KeyEvents::keyText(keyval);
    if (auto action = Shortcuts::actionForKey(key, KeyEvents::flags(state))) {
        if (isActionEnabled(*action)) {
            perform(*action);
        }
        return true;
    }
    if (keyval == GDK_KEY_Escape && (state & (GDK_CONTROL_MASK | GDK_ALT_MASK | GDK_SHIFT_MASK)) == 0) {
        cancelOperation();
        return true;
    }
    return false;
}

void MainWindow::cancelOperation()
{
    if (findBarIsShowing()) {
        closeFindBar();
    } else if (m_suggestions->isShowing()) {
        m_suggestions->clear();
    } else if (auto tab = activeTab()) {
        tab->view()->stopLoading();
    }
}

// MARK: - Session and placement

WindowSession MainWindow::sessionRecord() const
{
    WindowSession record;
    for (const auto& tab : tabs) {
        std::string url = tab->url;
        record.tabs.push_back(UrlHelper::isBlank(url) ? "about:blank" : url);
    }
    record.activeTab
        = static_cast<std::int64_t>(std::min<std::size_t>(activeIndex, std::max<std::size_t>(tabs.size(), 1) - 1));
    if (hasOwnPlacement) {
        Rect source = (isMinimized() || isZoomed() || isFullScreen()) ? frameBeforeNonNormalState : frame();
        double values[]
            = { std::round(source.x), std::round(source.y), std::round(source.width), std::round(source.height) };
        bool fits = std::all_of(std::begin(values), std::end(values), [](double v) {
            return std::isfinite(v) && v >= static_cast<double>(std::numeric_limits<std::int64_t>::min())
                && v <= static_cast<double>(std::numeric_limits<std::int32_t>::max());
        });
        if (fits) {
            record.x = static_cast<std::int64_t>(values[0]);
            record.y = static_cast<std::int64_t>(values[1]);
            record.w = static_cast<std::int64_t>(values[2]);
            record.h = static_cast<std::int64_t>(values[3]);
        }
    }
    record.state = isZoomed() && !isFullScreen() ? WindowState::zoomed : WindowState::normal;
    return record;
}

Rect MainWindow::frame() const
{
    Rect result = frameBeforeNonNormalState;
    // The default size is the window's size in its normal state: GTK keeps it through a maximise or full
    // screen, and updates it when the user resizes.
    int width = 0;
    int height = 0;
    gtk_window_get_default_size(m_window.get(), &width, &height);
    if (width <= 0 || height <= 0) {
        width = gtk_widget_get_width(GTK_WIDGET(m_window.get()));
        height = gtk_widget_get_height(GTK_WIDGET(m_window.get()));
    }
    result.width = width;
    result.height = height;
    if (auto position = X11Placement::position(m_window.get())) {
        result.x = position->first;
        result.y = position->second;
    } else if (!X11Placement::isAvailable()) {
        result.x = 0; // the compositor places windows: positions are neither read nor saved
        result.y = 0;
    }
    return result;
}

void MainWindow::applyFrame(const Rect& frame)
{
    X11Placement::placeWhenRealized(m_window.get(), static_cast<int>(frame.x), static_cast<int>(frame.y));
}

bool MainWindow::isZoomed() const
{
    return gtk_window_is_maximized(m_window.get());
}

bool MainWindow::isFullScreen() const
{
    return gtk_window_is_fullscreen(m_window.get());
}

bool MainWindow::isMinimized() const
{
    GdkSurface* surface = gtk_native_get_surface(GTK_NATIVE(m_window.get()));
    return surface && GDK_IS_TOPLEVEL(surface)
        && (gdk_toplevel_get_state(GDK_TOPLEVEL(surface)) & GDK_TOPLEVEL_STATE_MINIMIZED);
}

void MainWindow::zoom()
{
    if (!isZoomed() && !isFullScreen() && !isMinimized()) {
        frameBeforeNonNormalState = frame();
    }
    gtk_window_maximize(m_window.get());
}

void MainWindow::onStateChanged(GObject*, GParamSpec*, gpointer)
{
    // The frame before a maximise or full screen is kept by zoom() and the placement tracking.
}

void MainWindow::onSizeChanged(GObject*, GParamSpec*, gpointer data)
{
    auto* self = static_cast<MainWindow*>(data);
    self->trackPlacement();
}

void MainWindow::trackPlacement()
{
    if (isZoomed() || isFullScreen() || isMinimized()) {
        return;
    }
    if (gtk_widget_get_mapped(GTK_WIDGET(m_window.get()))) {
        hasOwnPlacement = true;
        frameBeforeNonNormalState = frame();
    }
}

std::vector<Rect> MainWindow::visibleFrames()
{
    return X11Placement::visibleFrames();
}

Rect MainWindow::frameCascadingFrom(const MainWindow* source)
{
    if (!source) {
        return defaultFrame();
    }
    auto frames = visibleFrames();
    std::optional<Rect> screen = frames.empty() ? std::nullopt : std::optional<Rect>(frames.front());
    return WindowPlacement::cascade(source->frame(), source->isZoomed(), screen);
}

void MainWindow::makeKeyAndOrderFront()
{
    gtk_window_present(m_window.get());
    if (m_hasLoggedGeometry) {
        return;
    }
    m_hasLoggedGeometry = true;
    std::weak_ptr<MainWindow> weak = weak_from_this();
    g_timeout_add_once(
        200,
        +[](gpointer data) {
            auto* held = static_cast<std::weak_ptr<MainWindow>*>(data);
            if (auto self = held->lock()) {
                GtkWidget* root = GTK_WIDGET(self->m_window.get());
                std::string hosted;
                for (GtkWidget* child = gtk_widget_get_first_child(self->m_container); child;
                     child = gtk_widget_get_next_sibling(child)) {
                    hosted += (hosted.empty() ? "" : ", ") + boundsIn(child, root);
                }
                std::string children;
                GtkWidget* content = gtk_window_get_child(self->m_window.get());
                for (GtkWidget* child = gtk_widget_get_first_child(content); child;
                     child = gtk_widget_get_next_sibling(child)) {
                    children += (children.empty() ? "" : ", ") + boundsIn(child, root);
                }
                log("Velder: chrome geometry \xe2\x80\x94 window " + boundsIn(root, root) + ", content "
                    + boundsIn(content, root) + ", toolbar " + boundsIn(self->m_toolbarRow->widget(), root)
                    + ", address " + boundsIn(self->m_addressBar->widget(), root) + ", container "
                    + boundsIn(self->m_container, root) + ", hosted [" + hosted + "], content children [" + children
                    + "]");
            }
            delete held;
        },
        new std::weak_ptr<MainWindow>(weak));
}

} // namespace velder
