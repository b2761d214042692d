#include "bridge/VLDPageScripts.h"

#include <webkit/webkit.h>

namespace velder::VLDPageScripts {

namespace {

constexpr const char* worldName = "velder";

// The icon candidates in the order a Chromium browser reports them: the last declared icon (or the
// origin's /favicon.ico for a web page that declares none), the last touch icon, the last precomposed
// touch icon, then the earlier declarations, newest first. Posted again whenever the head changes.
constexpr const char* iconsScript = R"JS(
(function () {
    if (window.top !== window) return;
    function kind(link) {
        const rel = ' ' + (link.getAttribute('rel') || '').toLowerCase() + ' ';
        if (rel.includes(' icon ')) return 'f';
        if (rel.includes(' apple-touch-icon-precomposed ')) return 'p';
        if (rel.includes(' apple-touch-icon ')) return 't';
        return null;
    }
    function collect() {
        let icon = null, touch = null, precomposed = null;
        const earlier = [];
        const head = document.head;
        if (head) {
            for (const link of head.querySelectorAll(':scope > link')) {
                const k = kind(link);
                if (!k || !link.href) continue;
                if (k === 'f') { if (icon) earlier.push(icon); icon = link.href; }
                else if (k === 't') { if (touch) earlier.push(touch); touch = link.href; }
                else { if (precomposed) earlier.push(precomposed); precomposed = link.href; }
            }
        }
        const list = [];
        if (icon) list.push(icon);
        else if (/^https?:$/.test(location.protocol)) list.push(location.origin + '/favicon.ico');
        if (touch) list.push(touch);
        if (precomposed) list.push(precomposed);
        for (let i = earlier.length - 1; i >= 0; --i) list.push(earlier[i]);
        return list;
    }
    let last = null;
    function report() {
        const list = collect();
        const text = JSON.stringify(list);
        if (text === last) return;
        last = text;
        window.webkit.messageHandlers.vldIcons.postMessage(list);
    }
    report();
    new MutationObserver(report).observe(document.documentElement,
        { subtree: true, childList: true, attributes: true, attributeFilter: ['rel', 'href'] });
})();
)JS";

// The selected text, for the context menu: the engine's hit test knows that there is a selection, not
// what it says.
constexpr const char* selectionScript = R"JS(
(function () {
    let last = '';
    document.addEventListener('selectionchange', function () {
        const selection = document.getSelection();
        const text = selection ? selection.toString() : '';
        if (text === last) return;
        last = text;
        window.webkit.messageHandlers.vldSelection.postMessage(text);
    });
})();
)JS";

} // namespace

GObject* newContentManager()
{
    WebKitUserContentManager* manager = webkit_user_content_manager_new();
    webkit_user_content_manager_register_script_message_handler(manager, iconsHandler, worldName);
    webkit_user_content_manager_register_script_message_handler(manager, selectionHandler, worldName);

    WebKitUserScript* icons = webkit_user_script_new_for_world(iconsScript, WEBKIT_USER_CONTENT_INJECT_TOP_FRAME,
        WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_END, worldName, nullptr, nullptr);
    webkit_user_content_manager_add_script(manager, icons);
    webkit_user_script_unref(icons);

    WebKitUserScript* selection
        = webkit_user_script_new_for_world(selectionScript, WEBKIT_USER_CONTENT_INJECT_ALL_FRAMES,
            WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START, worldName, nullptr, nullptr);
    webkit_user_content_manager_add_script(manager, selection);
    webkit_user_script_unref(selection);
    return G_OBJECT(manager);
}

} // namespace velder::VLDPageScripts
