#pragma once

#include "core/InternalPageResponse.h"

#include <functional>
#include <optional>
#include <string>

namespace velder {

class VLDBrowserView;

using VLDInternalPageResponse = InternalPageResponse;

// The source of velder:// pages: the full URL and the requesting view (null when there is none, or when
// its browser has closed) in, a response or nothing (a 404) out. Called on the main thread.
using VLDInternalPageSource
    = std::function<std::optional<VLDInternalPageResponse>(const std::string& url, VLDBrowserView* view)>;

// Serves the velder:// scheme from the registered source. Pages carry "Content-Type: text/html;
// charset=utf-8" and "Cache-Control: no-store"; a redirect is carried out by loading its target in the
// requesting view, so that the action's address never commits; an unknown route is a 404.
class VLDInternalPages {
public:
    // Registers the source with the engine (which must be started); false if that failed.
    static bool registerSource(VLDInternalPageSource source);
};

} // namespace velder
