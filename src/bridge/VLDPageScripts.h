#pragma once

#include <glib-object.h>

namespace velder {

// The small scripts the bridge runs in every page, in a script world of its own (so the page can neither
// see them nor post to their handlers): one reports the page's icon candidates, the other its selected
// text. Each browser has its own content manager, since the engine's messages don't say which page sent
// them.
namespace VLDPageScripts {

inline constexpr const char* iconsHandler = "vldIcons";
inline constexpr const char* selectionHandler = "vldSelection";

// A new content manager of the engine with both scripts and their handlers (a full reference).
GObject* newContentManager();

} // namespace VLDPageScripts

} // namespace velder
