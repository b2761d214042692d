#include "FakeBrowserView.h"

#include "shell/tab/BrowserTab.h"

namespace velder::test {

namespace {

std::uint64_t nextIdentifier = 1000;

} // namespace

FakeBrowserView::FakeBrowserView(std::string url, bool popupHost)
    : m_widget(GTK_WIDGET(g_object_ref_sink(gtk_drawing_area_new())))
    , m_identifier(nextIdentifier++)
    , m_url(std::move(url))
    , m_popupHost(popupHost)
{
}

FakeBrowserView::~FakeBrowserView()
{
    if (GtkWidget* parent = gtk_widget_get_parent(m_widget); parent && GTK_IS_BOX(parent)) {
        gtk_box_remove(GTK_BOX(parent), m_widget);
    }
    g_object_unref(m_widget);
}

void FakeBrowserView::install()
{
    BrowserTab::setViewFactory([](const std::string& url, std::shared_ptr<VLDRequestContext>, bool popupHost) {
        return std::make_shared<FakeBrowserView>(url, popupHost);
    });
}

void FakeBrowserView::loadURL(const std::string& url)
{
    if (url.empty()) {
        return;
    }
    loaded.push_back(url);
}

void FakeBrowserView::fetchIconAtURL(
    const std::string& url, std::uint64_t, std::function<void(std::optional<std::vector<std::uint8_t>>)> completion)
{
    commands.push_back("fetchIcon " + url);
    completion(std::nullopt);
}

void FakeBrowserView::requestClose()
{
    commands.push_back("requestClose");
    if (!m_hasBrowser || refusesToUnload) {
        return;
    }
    // The engine's close: the tear-down request, then the end of the browser.
    if (auto delegate = m_delegate.lock()) {
        delegate->shouldTearDownForClose(*this);
        delegate->willDestroyBrowser(*this);
    }
    m_hasBrowser = false;
}

void FakeBrowserView::reportAddress(const std::string& url)
{
    m_url = url;
    delegate()->didChangeAddress(*this, url);
}

void FakeBrowserView::reportTitle(const std::string& title)
{
    m_title = title;
    delegate()->didChangeTitle(*this, title);
}

void FakeBrowserView::reportLoading(bool loading)
{
    m_loading = loading;
    delegate()->didChangeLoadingState(*this, loading, false, false);
}

} // namespace velder::test
