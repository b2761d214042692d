#pragma once

#include <cstdint>
#include <functional>
#include <glib-object.h>
#include <optional>
#include <string>
#include <vector>

namespace velder {

// One GET of an icon in a page's own network session, so that it carries the site's cookies and goes
// through the same cache and proxy as the page. The engine only offers such a request as a download: the
// body goes to a private temporary file, which is read back and always deleted.
namespace VLDIconFetch {

using Completion = std::function<void(std::optional<std::vector<std::uint8_t>>)>;

// `session` is the engine's network session, or null when the view has no browser. The completion runs
// exactly once, on the main thread, after this call has returned: with the body of a 200 answer of 1 to
// `maxBytes` bytes, or with nothing.
void start(GObject* session, const std::string& url, std::uint64_t maxBytes, Completion completion);

// Ends every fetch still running, each completing with nothing (the engine is shutting down).
void cancelAll();

} // namespace VLDIconFetch

} // namespace velder
