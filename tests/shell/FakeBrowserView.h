#pragma once

#include "bridge/VLDBrowserView.h"
#include "bridge/VLDPermissionRequest.h"

#include <gtk/gtk.h>
#include <optional>
#include <string>
#include <vector>

namespace velder::test {

// A browser view without an engine: it records the commands it gets and lets a test play the engine's
// reports through the delegate, so the window layer's logic runs in milliseconds.
class FakeBrowserView : public VLDBrowserView {
public:
    explicit FakeBrowserView(std::string url, bool popupHost = false);
    ~FakeBrowserView() override;

    static void install(); // makes BrowserTab create fake views

    GtkWidget* widget() const override { return m_widget; }
    std::uint64_t identifier() const override { return m_identifier; }
    void setDelegate(std::weak_ptr<VLDBrowserDelegate> delegate) override { m_delegate = std::move(delegate); }
    const std::string& currentURL() const override { return m_url; }
    const std::string& pageTitle() const override { return m_title; }
    bool isLoading() const override { return m_loading; }
    bool canGoBack() const override { return false; }
    bool canGoForward() const override { return false; }
    bool hasBrowser() const override { return m_hasBrowser; }
    bool isPopupHost() const override { return m_popupHost; }
    bool refusesNavigationFocus() const override { return m_refusesFocus; }
    void setRefusesNavigationFocus(bool refuses) override { m_refusesFocus = refuses; }
    double zoomLevel() const override { return m_zoom; }
    void setZoomLevel(double level) override { m_zoom = level; }
    void loadURL(const std::string& url) override;
    void goBack() override { commands.push_back("goBack"); }
    void goForward() override { commands.push_back("goForward"); }
    void reload() override { commands.push_back("reload"); }
    void reloadIgnoringCache() override { commands.push_back("reloadIgnoringCache"); }
    void stopLoading() override { commands.push_back("stopLoading"); }
    void setBrowserFocus(bool focus) override { commands.push_back(focus ? "focus" : "unfocus"); }
    void findText(const std::string& text, bool forward, bool, bool findNext) override
    {
        commands.push_back("find " + text + (forward ? " forward" : " backward") + (findNext ? " next" : ""));
    }
    void stopFindingAndClearSelection(bool) override { commands.push_back("stopFinding"); }
    void showDevTools() override { commands.push_back("showDevTools"); }
    void startDownload(const std::string& url) override { commands.push_back("download " + url); }
    void clearCookiesAndCache() override { commands.push_back("clearCookiesAndCache"); }
    void fetchIconAtURL(const std::string& url, std::uint64_t,
        std::function<void(std::optional<std::vector<std::uint8_t>>)> completion) override;
    void requestClose() override;

    // Test controls.
    void attachBrowser() { m_hasBrowser = true; }
    // When set, requestClose is refused as a page's beforeunload can.
    bool refusesToUnload = false;
    void reportAddress(const std::string& url);
    void reportTitle(const std::string& title);
    void reportLoading(bool loading);
    std::shared_ptr<VLDBrowserDelegate> delegate() const { return m_delegate.lock(); }

    std::vector<std::string> commands;
    std::vector<std::string> loaded;

private:
    GtkWidget* m_widget;
    std::uint64_t m_identifier;
    std::weak_ptr<VLDBrowserDelegate> m_delegate;
    std::string m_url;
    std::string m_title;
    bool m_loading = false;
    bool m_hasBrowser = false;
    bool m_popupHost;
    bool m_refusesFocus = false;
    double m_zoom = 0;
};

// A location request as the bridge hands it over.
class FakePermissionRequest : public VLDPermissionRequest {
public:
    explicit FakePermissionRequest(std::string origin, Kind kind = Kind::geolocation)
        : m_origin(std::move(origin))
        , m_kind(kind)
    {
    }
    Kind kind() const override { return m_kind; }
    const std::string& origin() const override { return m_origin; }
    std::uint64_t promptId() const override { return 1; }
    bool isAnswered() const override { return answer.has_value(); }
    // The first answer stands, as with the engine's own requests.
    void allow() override { answer = answer.value_or(true); }
    void deny() override { answer = answer.value_or(false); }
    std::optional<bool> answer;

private:
    std::string m_origin;
    Kind m_kind;
};

} // namespace velder::test
