#pragma once

#include <optional>
#include <string>

namespace velder {

// What an update archive may hold: every entry stays inside the folder it is unpacked into.
namespace ArchiveEntryRule {

enum class Kind { plain, symbolicLink, hardLink };

// Nothing when the entry may be unpacked; else why not. An entry may not be absolute or climb out with
// "..". A symbolic link's target is read from the link's own folder and a hard link's from the top, and
// neither may point outside; a symbolic link may not point at an absolute path.
std::optional<std::string> refusal(const std::string& path, Kind kind = Kind::plain, const std::string& target = {});

} // namespace ArchiveEntryRule

} // namespace velder
