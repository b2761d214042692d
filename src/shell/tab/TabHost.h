#pragma once

#include "core/BrowserAction.h"

#include <functional>
#include <memory>
#include <string>

namespace velder {

class BrowserTab;
class VLDBrowserView;
struct VLDContextMenuInfo;

// What a tab asks of the window that shows it. The tab holds its host weakly: a tab whose window has gone
// asks nothing and takes each question's default.
class TabHost {
public:
    virtual ~TabHost() = default;

    // The tab's address, title, loading or location state changed: the chrome follows.
    virtual void tabDidChange(BrowserTab&) = 0;
    virtual void tabDidFindMatches(BrowserTab&) = 0;
    virtual void tabLocationRequestDidChange(BrowserTab&) = 0;
    // The pointer is over a link to `url`, or over none (empty).
    virtual void tabDidHoverLink(BrowserTab&, const std::string& url) = 0;
    // A key pressed in the page that the key table turns into a command. True: taken.
    virtual bool tabDidPressKey(BrowserTab&, BrowserAction) = 0;
    // The page's own menu; false tells the engine to show none of its own.
    virtual bool tabWantsContextMenu(BrowserTab&, const VLDContextMenuInfo&) = 0;
    // A link for a tab of its own (middle or Ctrl+click). True: handled.
    virtual bool tabOpensInNewTab(BrowserTab&, const std::string& url, bool foreground) = 0;
    // A page opens a window: a popup host placed in the window, or null to refuse.
    virtual std::shared_ptr<VLDBrowserView> tabWantsPopupHost(BrowserTab&, const std::string& url) = 0;
    // The page asks to stay while it is being closed: the window asks the user and calls `answer` once, true
    // to leave. When it stays after all, the window hears tabKeptPage.
    virtual void tabAsksToStay(BrowserTab&, std::function<void(bool leave)> answer) = 0;
    virtual void tabKeptPage(BrowserTab&) = 0;
    // The page agreed to close: its view leaves the window now, the tab when its browser is gone.
    virtual void tabWillTearDown(BrowserTab&) = 0;
    virtual void tabBrowserDidClose(BrowserTab&) = 0;
};

} // namespace velder
