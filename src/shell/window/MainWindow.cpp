#include "shell/window/MainWindow.h"

#include "bridge/VLDBrowserView.h"
#include "bridge/VLDKeyCodes.h"
#include "core/ActionTable.h"
#include "core/LocationSettings.h"
#include "core/Log.h"
#include "core/Shortcuts.h"
#include "core/UrlHelper.h"
#include "core/Vault.h"
#include "glib/MainLoop.h"
#include "shell/chrome/AddressBar.h"
#include "shell/chrome/KeyEvents.h"
#include "shell/chrome/LocationPin.h"
#include "shell/chrome/TabStrip.h"
#include "shell/chrome/Toolbar.h"
#include "shell/overlays/BlankSlate.h"
#include "shell/overlays/FindBar.h"
#include "shell/overlays/LinkStatus.h"
#include "shell/overlays/UrlSuggestions.h"
#include "shell/tab/BrowserTab.h"
#include "shell/window/AddressEditing.h"
#include "shell/window/AppDelegate.h"
#include "shell/window/LeaveQuestions.h"
#include "shell/window/MenuBar.h"
#include "shell/window/WindowChrome.h"
#include "shell/window/WindowCommands.h"
#include "shell/window/WindowMenus.h"
#include "shell/window/WindowRegistry.h"

#include <algorithm>

namespace velder {

namespace {

constexpr const char* ownerKey = "velder-main-window";

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
    std::optional<Rect> frame = WindowPlacement::frameFromSession(session, WindowFrame::visibleFrames());
    auto window = create(frame.value_or(WindowFrame::defaultFrame()), false, frame.has_value());
    for (const std::string& url : session.tabs) {
        window->install(BrowserTab::restore(url), false);
    }
    if (!window->tabs().empty()) {
        auto last = static_cast<std::int64_t>(window->tabs().size()) - 1;
        window->selectTab(static_cast<std::size_t>(std::clamp<std::int64_t>(session.activeTab, 0, last)));
    }
    return window;
}

MainWindow::MainWindow(Rect frame, bool isPrivate, bool hasOwnPlacement)
    : m_isPrivate(isPrivate)
{
    // Velder's chrome is dark whatever the desktop's theme, and so are the parts GTK draws for it.
    g_object_set(gtk_settings_get_default(), "gtk-application-prefer-dark-theme", TRUE, nullptr);
    m_window = GObjectPtr<GtkWindow>::retain(GTK_WINDOW(gtk_window_new()));
    g_object_set_data(G_OBJECT(m_window.get()), ownerKey, this);
    if (GApplication* application = g_application_get_default(); GTK_IS_APPLICATION(application)) {
        gtk_window_set_application(m_window.get(), GTK_APPLICATION(application));
    }
    gtk_window_set_title(m_window.get(), "Velder");
    gtk_widget_set_size_request(GTK_WIDGET(m_window.get()), 560, 360);
    gtk_widget_add_css_class(GTK_WIDGET(m_window.get()), "velder-window");
    m_frame = std::make_unique<WindowFrame>(m_window.get(), frame, hasOwnPlacement);
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
    m_commands = std::make_unique<WindowCommands>(*this);
    gtk_widget_insert_action_group(GTK_WIDGET(m_window.get()), "win", m_commands->actions());
    m_chrome = std::make_unique<WindowChrome>(m_window.get(), m_isPrivate);

    std::weak_ptr<MainWindow> weak = weak_from_this();
    m_chrome->connect(weak);
    m_leaveQuestions = std::make_unique<LeaveQuestions>(m_window.get(), [weak](BrowserTab& tab) {
        auto self = weak.lock();
        auto index = self ? self->m_tabs.indexOf(tab.shared_from_this()) : std::nullopt;
        if (index) {
            self->selectTab(*index);
        }
    });
    m_addressEditing = std::make_unique<AddressEditing>(
        addressBar(), suggestions(),
        [weak] {
            auto self = weak.lock();
            auto tab = self ? self->activeTab() : nullptr;
            return tab ? tab->url : std::string();
        },
        [weak](const std::string& url) {
            if (auto self = weak.lock()) {
                self->navigateActiveTab(url);
            }
        },
        [weak] {
            // Leaving the field lets a page take the focus with its next navigation again.
            if (auto self = weak.lock(); self && self->activeTab()) {
                self->activeTab()->view()->setRefusesNavigationFocus(false);
            }
        });

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
    MenuBar::attachRevealKeys(m_window.get(), m_chrome->menuBar());

    m_chrome->applyTheme();
    m_themeToken = Themed::subscribeToTheme(GTK_WIDGET(m_window.get()), [weak] {
        if (auto self = weak.lock()) {
            self->m_chrome->applyTheme();
        }
    });
    m_settingsToken = NotificationCenter::defaultCenter().addObserver(
        Vault::settingsDidChangeNotification, [weak](const Notification&) {
            // Settings change on whatever thread saved them; the chrome follows on the main loop.
            MainLoop::post(weak, [](MainWindow& self) {
                self.syncLocationBar();
                self.refreshChrome();
            });
        });
}

TabStrip& MainWindow::strip() const
{
    return m_chrome->strip();
}

AddressBar& MainWindow::addressBar() const
{
    return m_chrome->addressBar();
}

UrlSuggestions& MainWindow::suggestions() const
{
    return m_chrome->suggestions();
}

FindBar& MainWindow::findBar() const
{
    return m_chrome->findBar();
}

GtkWidget* MainWindow::container() const
{
    return m_chrome->container();
}

GtkWidget* MainWindow::pageMenuAnchor() const
{
    return m_chrome->pageMenuAnchor();
}

GActionGroup* MainWindow::actions() const
{
    return m_commands->actions();
}

// MARK: - Tabs

std::shared_ptr<BrowserTab> MainWindow::activeTab() const
{
    return m_tabs.active().value_or(nullptr);
}

void MainWindow::install(std::shared_ptr<BrowserTab> tab, bool activate)
{
    tab->setHost(weak_from_this());
    GtkWidget* view = tab->view()->widget();
    gtk_widget_set_hexpand(view, true);
    gtk_widget_set_vexpand(view, true);
    gtk_widget_set_visible(view, false);
    gtk_box_append(GTK_BOX(container()), view);
    tab->view()->setZoomLevel(AppDelegate::zoomLevel);
    std::size_t index = m_tabs.append(std::move(tab), activate);
    if (m_tabs.activeIndex() == index) {
        selectTab(index);
    } else {
        refreshChrome();
    }
}

void MainWindow::selectTab(std::size_t index)
{
    if (!m_tabs.select(index)) {
        return;
    }
    for (std::size_t i = 0; i < m_tabs.size(); ++i) {
        gtk_widget_set_visible(m_tabs[i]->view()->widget(), i == index);
    }
    if (findBarIsShowing()) {
        closeFindBar();
    }
    m_chrome->linkStatus().show(""); // the other tab's link is no longer under the pointer
    syncLocationBar();
    refreshChrome();
    focusForActiveTab();
}

void MainWindow::closeTab(std::size_t index)
{
    if (index >= m_tabs.size()) {
        return;
    }
    if (m_tabs.size() == 1) {
        performClose();
        return;
    }
    std::shared_ptr<BrowserTab> tab = m_tabs[index];
    tab->refuseParkedLocationRequest();
    if (tab->view()->hasBrowser()) {
        // The tab stays until its browser is gone, and may stay for good if its page asks to.
        if (m_closingTabs.insert(tab.get()).second) {
            tab->view()->requestClose();
        }
    } else {
        rememberClosed(*tab);
        dispose(tab);
    }
}

void MainWindow::rememberClosed(const BrowserTab& tab)
{
    if (!tab.isPrivate()) {
        if (AppDelegate* delegate = AppDelegate::shared()) {
            delegate->rememberClosedTab(tab.url);
        }
    }
}

void MainWindow::closeTabs(const std::vector<std::shared_ptr<BrowserTab>>& tabs)
{
    for (const auto& tab : tabs) {
        if (auto index = m_tabs.indexOf(tab)) {
            closeTab(*index);
        }
    }
}

void MainWindow::dispose(const std::shared_ptr<BrowserTab>& tab)
{
    if (!m_tabs.remove(tab)) {
        return;
    }
    if (gtk_widget_get_parent(tab->view()->widget()) == container()) {
        gtk_box_remove(GTK_BOX(container()), tab->view()->widget());
    }
    if (m_tabs.empty()) {
        close();
        return;
    }
    if (!m_isClosing) {
        selectTab(m_tabs.activeIndex());
    }
}

void MainWindow::moveTab(std::size_t from, std::size_t to)
{
    if (m_tabs.move(from, to)) {
        refreshChrome();
    }
}

void MainWindow::requestCloseBrowsers()
{
    m_isClosing = true;
    m_leaveQuestions->leaveAll(); // a quit is never held up by a page
    for (const auto& tab : m_tabs.tabs()) {
        tab->refuseParkedLocationRequest();
    }
    for (const auto& tab : std::vector(m_tabs.tabs())) {
        tab->view()->requestClose();
    }
}

void MainWindow::newTab()
{
    m_focusAddressOnNextActivation = true;
    std::string url = m_isPrivate ? "about:blank" : Vault::shared().snapshot()->settings.newTabPage;
    install(BrowserTab::create(url, m_isPrivate), true);
    m_focusAddressOnNextActivation = false;
}

// MARK: - What the tabs ask

void MainWindow::tabDidChange(BrowserTab& tab)
{
    if (m_tabs.contains(tab.shared_from_this())) {
        refreshChrome();
    }
}

void MainWindow::tabDidFindMatches(BrowserTab& tab)
{
    if (activeTab().get() == &tab) {
        findBar().setResult(tab.findMatchCount, tab.findActiveMatch);
    }
}

void MainWindow::tabLocationRequestDidChange(BrowserTab& tab)
{
    if (activeTab().get() == &tab) {
        syncLocationBar();
    }
}

void MainWindow::tabDidHoverLink(BrowserTab& tab, const std::string& url)
{
    if (activeTab().get() == &tab) {
        m_chrome->linkStatus().show(url);
    }
}

bool MainWindow::tabDidPressKey(BrowserTab&, BrowserAction action)
{
    // Escape in a page closes the find bar while it shows, and stops the page otherwise.
    if (action.kind == BrowserAction::Kind::stop && findBarIsShowing()) {
        closeFindBar();
    } else {
        perform(action);
    }
    return true;
}

bool MainWindow::tabWantsContextMenu(BrowserTab&, const VLDContextMenuInfo& info)
{
    return WindowMenus::showPageMenu(*this, info);
}

bool MainWindow::tabOpensInNewTab(BrowserTab&, const std::string& url, bool foreground)
{
    install(BrowserTab::create(url, m_isPrivate), foreground);
    return true;
}

std::shared_ptr<VLDBrowserView> MainWindow::tabWantsPopupHost(BrowserTab&, const std::string&)
{
    auto popup = BrowserTab::createPopupHost(m_isPrivate);
    install(popup, true);
    // The engine's view joins the host once this returns: then the new page can take the keyboard.
    MainLoop::post(weak_from_this(), [tab = std::weak_ptr(popup)](MainWindow& window) {
        if (auto shown = tab.lock(); shown && shown == window.activeTab()) {
            window.focusForActiveTab();
        }
    });
    return popup->view();
}

void MainWindow::tabWillTearDown(BrowserTab& tab)
{
    if (gtk_widget_get_parent(tab.view()->widget()) == container()) {
        gtk_box_remove(GTK_BOX(container()), tab.view()->widget());
    }
}

void MainWindow::tabAsksToStay(BrowserTab& tab, std::function<void(bool leave)> answer)
{
    m_leaveQuestions->ask(tab, std::move(answer));
}

void MainWindow::tabKeptPage(BrowserTab& tab)
{
    m_closingTabs.erase(&tab);
    m_isClosing = false; // the window stays too, and may be closed again
}

void MainWindow::tabBrowserDidClose(BrowserTab& tab)
{
    if (m_closingTabs.erase(&tab)) {
        rememberClosed(tab);
    }
    dispose(tab.shared_from_this());
}

// MARK: - Chrome

void MainWindow::perform(BrowserAction action)
{
    m_commands->perform(action);
}

bool MainWindow::isActionEnabled(BrowserAction action) const
{
    return m_commands->isEnabled(action);
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
    // A page opened by a page (a popup, a form aimed at a new window) has no address yet but is a page.
    bool isPage = !UrlHelper::isBlank(tab->url) || tab->view()->isPopupHost();
    if (!m_focusAddressOnNextActivation && isPage) {
        focusPage();
    } else {
        tab->view()->setRefusesNavigationFocus(true);
        tab->view()->setBrowserFocus(false);
        addressBar().focusAndSelectAll();
    }
}

void MainWindow::focusPage()
{
    if (auto tab = activeTab()) {
        tab->view()->setRefusesNavigationFocus(false);
        gtk_window_set_focus(m_window.get(), nullptr);
        tab->view()->setBrowserFocus(true);
    }
}

void MainWindow::refreshChrome()
{
    auto tab = activeTab();
    std::vector<TabStrip::Item> items;
    for (const auto& each : m_tabs.tabs()) {
        items.push_back({ each->displayTitle(), UrlHelper::isBlank(each->url) ? "" : each->url });
    }
    strip().setTabs(items, static_cast<int>(m_tabs.activeIndex()));
    m_chrome->toolbar().setNavigation(tab && tab->canGoBack, tab && tab->canGoForward, tab && tab->isLoading);
    if (!addressBar().isEditing()) {
        addressBar().setText(tab ? tab->url : "");
    }
    addressBar().pin().setLit(tab && tab->isLocationLit());
    addressBar().pin().refreshVisibility(); // a change of visibility lays the bar out again by itself
    gtk_window_set_title(m_window.get(), tab ? tab->displayTitle().c_str() : "Velder");
    gtk_widget_set_visible(m_chrome->slate().widget(), !tab || UrlHelper::isBlank(tab->url));
    m_commands->updateStates();
}

bool MainWindow::slateIsShowing() const
{
    return gtk_widget_get_visible(m_chrome->slate().widget());
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
    auto reveal = [](MainWindow& window) {
        for (std::size_t i = 0; i < window.m_tabs.size(); ++i) {
            auto route = InternalRoutes::parse(window.m_tabs[i]->url);
            if (route && route->first == InternalRoute::settings) {
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

// MARK: - Find bar

void MainWindow::openFindBar()
{
    findBar().open();
}

void MainWindow::closeFindBar()
{
    auto tab = activeTab();
    if (tab) {
        tab->findMatchCount = 0;
        tab->findActiveMatch = 0;
        tab->view()->stopFindingAndClearSelection(true);
    }
    findBar().hide();
    if (tab) {
        gtk_window_set_focus(m_window.get(), nullptr);
        tab->view()->setBrowserFocus(true);
    }
}

bool MainWindow::findBarIsShowing() const
{
    return findBar().isShowing();
}

void MainWindow::setLocationServices(bool enabled)
{
    if (!enabled) {
        for (const auto& window : WindowRegistry::shared().windows) {
            for (const auto& tab : window->tabs()) {
                tab->refuseParkedLocationRequest();
            }
        }
    }
    LocationSettings::shared().setEnabled(enabled);
}

void MainWindow::syncLocationBar()
{
    m_chrome->syncLocationBar(activeTab().get(), Vault::shared().snapshot()->settings.locationEnabled);
}

// MARK: - Keys

bool MainWindow::handleKeyPress(guint keyval, GdkModifierType state)
{
    std::string key = KeyEvents::keyText(keyval);
    std::uint32_t flags = VLDKeyCodes::modifiersForState(state);
    if (auto action = Shortcuts::actionForKey(key, flags)) {
        if (isActionEnabled(*action)) {
            perform(*action);
        }
        return true;
    }
    if (const ActionRow* row = ActionTable::windowKey(key, flags)) {
        gtk_widget_activate_action(GTK_WIDGET(m_window.get()), ("win." + std::string(row->name)).c_str(), nullptr);
        return true;
    }
    if (keyval == GDK_KEY_Escape && flags == 0) {
        cancelOperation();
        return true;
    }
    return false;
}

void MainWindow::cancelOperation()
{
    if (findBarIsShowing()) {
        closeFindBar();
    } else if (suggestions().isShowing()) {
        suggestions().clear();
    } else if (auto tab = activeTab()) {
        tab->view()->stopLoading();
    }
}

// MARK: - Session and closing

WindowSession MainWindow::sessionRecord() const
{
    WindowSession record;
    for (const auto& tab : m_tabs.tabs()) {
        record.tabs.push_back(UrlHelper::isBlank(tab->url) ? "about:blank" : tab->url);
    }
    record.activeTab
        = static_cast<std::int64_t>(std::min(m_tabs.activeIndex(), std::max<std::size_t>(m_tabs.size(), 1) - 1));
    m_frame->writeTo(record);
    return record;
}

gboolean MainWindow::onCloseRequest(GtkWindow*, gpointer data)
{
    static_cast<MainWindow*>(data)->performClose();
    return TRUE; // the window goes through close(), never on its own
}

bool MainWindow::windowShouldClose()
{
    const auto& tabs = m_tabs.tabs();
    if (std::none_of(tabs.begin(), tabs.end(), [](auto& tab) { return tab->view()->hasBrowser(); })) {
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
    WindowRegistry::shared().remove(this);
    WindowRegistry::shared().capture();
    g_signal_handlers_disconnect_by_data(m_window.get(), this);
    gtk_window_destroy(m_window.get());
}

// MARK: - Placement

Rect MainWindow::frameCascadingFrom(const MainWindow* source)
{
    return source ? source->placement().cascade() : WindowFrame::defaultFrame();
}

void MainWindow::makeKeyAndOrderFront()
{
    gtk_window_present(m_window.get());
    if (!m_hasLoggedGeometry) {
        m_hasLoggedGeometry = true;
        MainLoop::postAfter(std::chrono::milliseconds(200), [weak = weak_from_this()] {
            if (auto self = weak.lock()) {
                self->logGeometryOnce();
            }
        });
    }
}

void MainWindow::logGeometryOnce()
{
    log("Velder: chrome geometry \xe2\x80\x94 " + m_chrome->geometry());
}

} // namespace velder
