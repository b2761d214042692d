#include "bridge/VLDPageProcess.h"

#include "bridge/VLDBrowserView.h"
#include "bridge/VLDBrowserViewImpl.h"
#include "bridge/VLDClient.h"
#include "bridge/VLDEngineRuntime.h"
#include "bridge/VLDPageScripts.h"
#include "bridge/VLDRequestContextImpl.h"
#include "core/ProcessSharing.h"
#include "glib/GObjectPtr.h"

#include <algorithm>
#include <webkit/webkit.h>

namespace velder {

namespace {

struct EarlyProcess {
    GObjectPtr<GtkWidget> view;
    std::uint64_t taker = 0; // the view whose page was created in its process
};

EarlyProcess& early()
{
    static EarlyProcess process;
    return process;
}

// A new engine view with the settings every page has: related to `related` (in its session and process),
// else in `session` with a process of its own. Without a content manager the view makes its own.
GtkWidget* newEngineView(GtkWidget* related, const VLDRequestContextImpl& session, GObject* contentManager)
{
    WebKitSettings* settings = webkit_settings_new();
    webkit_settings_set_enable_developer_extras(settings, TRUE);
    // Popups only from a user's gesture.
    webkit_settings_set_javascript_can_open_windows_automatically(settings, FALSE);
    if (VLDEngineRuntime::softwareRendering()) {
        // Composited in software, each page would carry a rasterizer of its own: drawn on the CPU instead.
        webkit_settings_set_hardware_acceleration_policy(settings, WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
    }
    GtkWidget* view = related
        ? GTK_WIDGET(g_object_new(WEBKIT_TYPE_WEB_VIEW, "related-view", related, "user-content-manager", contentManager,
            "settings", settings, nullptr))
        : GTK_WIDGET(g_object_new(WEBKIT_TYPE_WEB_VIEW, "network-session", session.networkSession(), "web-context",
            webkit_web_context_get_default(), "user-content-manager", contentManager, "settings", settings, nullptr));
    g_object_unref(settings);
    return view;
}

// A live view of the same session whose process a page for `url` should join, or null.
std::shared_ptr<VLDBrowserViewImpl> processPeer(const VLDBrowserViewImpl& view, const std::string& url)
{
    std::vector<std::shared_ptr<VLDBrowserViewImpl>> peers;
    std::vector<ProcessSharing::Page> pages;
    for (auto& other : VLDClient::liveViews()) {
        if (other.get() == &view || !other->webView() || other->isClosing()
            || other->requestContext() != view.requestContext()) {
            continue;
        }
        // The engine's address is the one being loaded until a document commits, then the document's.
        const char* shown = webkit_web_view_get_uri(WEBKIT_WEB_VIEW(other->webView()));
        pages.push_back({ other->identifier(), shown ? shown : "", other->processGroup() });
        peers.push_back(std::move(other));
    }
    auto related = ProcessSharing::relatedPageFor(url, pages);
    auto found = std::ranges::find_if(peers, [&](auto& peer) { return related == peer->identifier(); });
    return found == peers.end() ? nullptr : *found;
}

} // namespace

VLDPageProcess::Placement VLDPageProcess::place(const VLDBrowserViewImpl& view, const std::string& url)
{
    Placement placement { nullptr, view.identifier() };
    GtkWidget* related = nullptr;
    if (auto peer = processPeer(view, url)) {
        related = peer->webView();
        placement.processGroup = peer->processGroup();
    } else if (early().view && !early().taker && view.requestContext() == VLDRequestContext::globalContext()) {
        related = early().view.get();
        early().taker = view.identifier();
    }
    GObject* contentManager = VLDPageScripts::newContentManager();
    placement.webView = newEngineView(related, *view.requestContext(), contentManager);
    g_object_unref(contentManager);
    return placement;
}

void VLDPageProcess::startEarly()
{
    auto context = std::dynamic_pointer_cast<VLDRequestContextImpl>(VLDRequestContext::globalContext());
    if (!context || early().view) {
        return;
    }
    GtkWidget* view = newEngineView(nullptr, *context, nullptr);
    early().view = GObjectPtr<GtkWidget>::adopt(GTK_WIDGET(g_object_ref_sink(view)));
    early().taker = 0;
    // The engine starts a page's process at its first load; an empty document is the cheapest one, and WebKit
    // keeps a process that has shown nothing else for the next page of any site.
    webkit_web_view_load_uri(WEBKIT_WEB_VIEW(view), "about:blank");
}

void VLDPageProcess::releaseUnclaimed()
{
    if (!early().taker) {
        early().view.reset();
    }
}

void VLDPageProcess::pageWentOrCommitted(std::uint64_t identifier)
{
    if (early().taker == identifier) {
        early() = {};
    }
}

GtkWidget* VLDPageProcess::earlyView()
{
    return early().view.get();
}

void VLDBrowserView::startWebProcessEarly()
{
    VLDPageProcess::startEarly();
}

void VLDBrowserView::releaseUnclaimedWebProcess()
{
    VLDPageProcess::releaseUnclaimed();
}

} // namespace velder
