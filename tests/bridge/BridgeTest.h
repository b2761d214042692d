#pragma once

#include "PageProbe.h"
#include "bridge/VLDBrowserView.h"
#include "bridge/VLDEngineRuntime.h"
#include "bridge/VLDPermissionRequest.h"
#include "support/MainLoop.h"
#include "support/RealInput.h"
#include "support/TestServer.h"
#include "support/TestSupport.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>
#include <webkit/webkit.h>

namespace velder::test {

using namespace std::chrono_literals;
using PageProbe::callInWorld;
using PageProbe::clickElement;
using PageProbe::evaluate;
using PageProbe::webViewOf;

// For a test that needs real input (see RealInput).
#define SKIP_WITHOUT_REAL_INPUT()                                                                                      \
    if (!RealInput::available())                                                                                       \
    GTEST_SKIP() << "needs XTest"

// A page with a title, a body and, if given, more of a head.
std::string page(const std::string& title, const std::string& body = {}, const std::string& head = {});

// Waits until the script's value, as text, is `expected`.
bool waitForScriptValue(VLDBrowserView& view, const std::string& script, const std::string& expected);

// A delegate that writes down everything a view reports, and answers as the test sets it up.
class RecordingDelegate : public VLDBrowserDelegate {
public:
    struct Failure {
        std::int32_t code;
        std::string text;
        std::string url;
    };
    struct NewTab {
        std::string url;
        bool foreground;
    };
    struct FindResult {
        std::int32_t count;
        std::int32_t activeMatch;
    };
    struct Key {
        std::int32_t code;
        std::uint32_t modifiers;
    };
    struct Navigation {
        std::string url;
        bool isRedirect;
    };

    std::vector<std::string> addresses;
    std::vector<std::string> titles;
    std::vector<std::vector<std::string>> faviconLists;
    std::vector<bool> loadingStates; // isLoading of each report
    std::vector<Failure> failures;
    std::vector<std::pair<std::string, std::int32_t>> refusedCertificates;
    std::vector<std::int64_t> terminations;
    std::vector<NewTab> newTabs;
    std::vector<FindResult> findResults;
    std::vector<Key> keys;
    std::vector<Navigation> navigations;
    std::vector<VLDContextMenuInfo> contextMenus;
    std::vector<std::shared_ptr<VLDPermissionRequest>> permissionRequests;
    std::vector<std::shared_ptr<VLDPermissionRequest>> withdrawnRequests;
    std::vector<VLDDownloadItem> downloadQuestions;
    std::vector<VLDDownloadItem> downloadUpdates;
    std::vector<std::shared_ptr<VLDDownloadCallback>> downloadCallbacks;
    // Life-span events in order: "created", "popup:<url>", "asked", "stayed", "tearDown", "destroy".
    std::vector<std::string> events;
    bool leavePage = false; // the user's answer when a page being closed asks to stay

    // Answers, for the operations that have one.
    std::function<std::shared_ptr<VLDBrowserView>(const std::string& url, bool isUserGesture)> popupHost;
    std::function<bool(const std::string& url)> allowNavigation = [](const std::string&) { return true; };
    std::function<bool(std::int32_t code, std::uint32_t modifiers)> handlesKey
        = [](std::int32_t, std::uint32_t) { return false; };
    // Returned by shouldHandlePermissionRequest; the request is kept in permissionRequests.
    bool takesPermissionRequests = true;
    std::function<bool(const VLDDownloadItem&, std::shared_ptr<VLDDownloadCallback>)> decideDownload;
    std::function<void(VLDBrowserView&)> onWillDestroy;

    void didChangeAddress(VLDBrowserView&, const std::string& url) override { addresses.push_back(url); }
    void didChangeTitle(VLDBrowserView&, const std::string& title) override { titles.push_back(title); }
    void didChangeFaviconURLs(VLDBrowserView&, const std::vector<std::string>& urls) override
    {
        faviconLists.push_back(urls);
    }
    void didChangeLoadingState(VLDBrowserView&, bool isLoading, bool, bool) override
    {
        loadingStates.push_back(isLoading);
    }
    void didFailLoad(VLDBrowserView&, std::int32_t code, const std::string& text, const std::string& url) override
    {
        failures.push_back({ code, text, url });
    }
    void shouldLeavePage(VLDBrowserView&, std::function<void(bool)> answer) override
    {
        events.push_back("asked");
        answer(leavePage);
    }
    void didKeepPageOnClose(VLDBrowserView&) override { events.push_back("stayed"); }
    void didCreateBrowser(VLDBrowserView&) override { events.push_back("created"); }
    std::shared_ptr<VLDBrowserView> hostViewForPopup(VLDBrowserView&, const std::string& url, bool gesture) override
    {
        events.push_back("popup:" + url);
        return popupHost ? popupHost(url, gesture) : nullptr;
    }
    void didCreatePopup(VLDBrowserView&, VLDBrowserView& popup) override
    {
        events.push_back("didCreatePopup:" + std::to_string(popup.identifier()));
    }
    void shouldTearDownForClose(VLDBrowserView&) override { events.push_back("tearDown"); }
    void willDestroyBrowser(VLDBrowserView& view) override
    {
        events.push_back("destroy");
        if (onWillDestroy) {
            onWillDestroy(view);
        }
    }
    bool shouldAllowNavigation(VLDBrowserView&, const std::string& url, bool, bool redirect) override
    {
        navigations.push_back({ url, redirect });
        return allowNavigation(url);
    }
    bool openURLInNewTab(VLDBrowserView&, const std::string& url, bool foreground) override
    {
        newTabs.push_back({ url, foreground });
        return true;
    }
    void didRefuseCertificate(VLDBrowserView&, const std::string& url, std::int32_t code) override
    {
        refusedCertificates.emplace_back(url, code);
    }
    void didTerminateRenderProcess(VLDBrowserView&, std::int64_t status) override { terminations.push_back(status); }
    bool shouldHandlePermissionRequest(VLDBrowserView&, std::shared_ptr<VLDPermissionRequest> request) override
    {
        permissionRequests.push_back(request);
        return takesPermissionRequests;
    }
    void didWithdrawPermissionRequest(VLDBrowserView&, std::shared_ptr<VLDPermissionRequest> request) override
    {
        withdrawnRequests.push_back(request);
    }
    bool decideDestinationForDownload(
        VLDBrowserView&, const VLDDownloadItem& item, std::shared_ptr<VLDDownloadCallback> callback) override
    {
        downloadQuestions.push_back(item);
        if (decideDownload) {
            return decideDownload(item, callback);
        }
        downloadCallbacks.push_back(callback);
        return true;
    }
    void didUpdateDownload(VLDBrowserView&, const VLDDownloadItem& item) override { downloadUpdates.push_back(item); }
    void didFindMatchCount(VLDBrowserView&, std::int32_t count, std::int32_t activeMatch, bool) override
    {
        findResults.push_back({ count, activeMatch });
    }
    bool shouldHandleKey(VLDBrowserView&, std::int32_t code, std::uint32_t modifiers) override
    {
        keys.push_back({ code, modifiers });
        return handlesKey(code, modifiers);
    }
    bool shouldShowContextMenu(VLDBrowserView&, const VLDContextMenuInfo& info) override
    {
        contextMenus.push_back(info);
        return false;
    }

    bool hasEvent(const std::string& event) const { return std::ranges::find(events, event) != events.end(); }
    bool sawAddress(const std::string& url) const { return std::ranges::find(addresses, url) != addresses.end(); }
    bool isIdleAt(const std::string& url) const
    {
        return !addresses.empty() && addresses.back() == url && !loadingStates.empty() && !loadingStates.back();
    }
};

// Each test: its own profile, the engine started, a loopback server, and windows that go at the end.
class BridgeTest : public ::testing::Test {
public:
    // Whether a test of this process started the engine already (some of its settings are read once).
    static inline bool engineStarted = false;
    // A port on 127.0.0.1 that nothing listens on: a test server's, once it has gone.
    static int freeLoopbackPort();

protected:
    void SetUp() override;
    void TearDown() override;

    // A window of its own (800 x 600) holding the widget, shown.
    GtkWidget* showInWindow(GtkWidget* child);
    // A view with a delegate, placed in a window, once its browser exists.
    std::shared_ptr<VLDBrowserView> openView(const std::string& url, const std::shared_ptr<RecordingDelegate>& delegate,
        std::shared_ptr<VLDRequestContext> context = nullptr);
    // The same, once the view has finished loading the URL.
    std::shared_ptr<VLDBrowserView> openLoaded(const std::string& url,
        const std::shared_ptr<RecordingDelegate>& delegate, std::shared_ptr<VLDRequestContext> context = nullptr);
    // Loads the URL and waits until the view has finished loading it.
    bool loadAndWait(VLDBrowserView& view, RecordingDelegate& delegate, const std::string& url);

    std::unique_ptr<TestProfile> m_profile;
    // GLib reads the user's folders (the download folder among them) from here.
    std::unique_ptr<ScopedEnv> m_configHome;
    std::unique_ptr<TestServer> m_server;
    // The delegate of the test's view (a test with several views makes the others its own).
    std::shared_ptr<RecordingDelegate> delegate = std::make_shared<RecordingDelegate>();
    std::vector<GtkWidget*> m_windows;
    std::vector<std::shared_ptr<VLDBrowserView>> m_views;
};

} // namespace velder::test
