#pragma once

#include "core/AppcastItem.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velder {

// The update feed: an RSS document whose items are releases, in the format Sparkle defined. Each item
// names its version with sparkle:version and sparkle:shortVersionString (as elements of the item or as
// attributes of its enclosure) and carries one <enclosure> with url, length and sparkle:edSignature.
namespace Appcast {

// The items that have an enclosure with a url and a version, in document order. Nothing, with the
// parser's words in `error`, when the text isn't well-formed XML.
std::optional<std::vector<AppcastItem>> parse(std::string_view xml, std::string* error = nullptr);

// Compares dotted versions part by part as numbers ("1.10" after "1.9"); a missing part counts as 0 and a
// part's digits end at its first other character ("2b" is 2).
int compareVersions(std::string_view a, std::string_view b);

// The item with the highest version above `running`; of equal versions the first stays.
std::optional<AppcastItem> newestAbove(const std::vector<AppcastItem>& items, std::string_view running);

} // namespace Appcast

} // namespace velder
