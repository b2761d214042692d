#pragma once

#include <initializer_list>
#include <string>

typedef struct _WebKitWebView WebKitWebView;

namespace velder {
class VLDBrowserView;
}

namespace velder::test {

// What tests may ask of a live page behind the bridge's back: its engine view, the value of a script, and a
// real click on one of its elements.
namespace PageProbe {

// The view's engine browser, or null before it exists.
WebKitWebView* webViewOf(VLDBrowserView& view);

// Runs a script in the page (as the user would, so it counts as a gesture) and gives its value as text
// ("<timeout>", "<no browser>" or "<error: ...>" when there is none).
std::string evaluate(VLDBrowserView& view, const std::string& script);

// Runs the body of an async function (it may return a promise) in the given script world, and gives its value
// as text.
std::string callInWorld(VLDBrowserView& view, const std::string& functionBody, const char* world);

// A real click (see RealInput) at the middle of the first element the selector finds.
bool clickElement(VLDBrowserView& view, const std::string& selector, unsigned button = 1,
    std::initializer_list<unsigned> modifiers = {});

} // namespace PageProbe

} // namespace velder::test
