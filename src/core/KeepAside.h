#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace velder {

// A file Velder couldn't read is never destroyed: before the first save that would replace it, it moves
// aside as "<name>.unreadable-<UTC date and time>" (mode 0600), where a restored backup, another key or a
// disk's error can still be looked into. At most three are kept per file; the oldest go first.
namespace KeepAside {

inline constexpr int kept = 3;

// Moves the file at `path` aside, named for `now`, and removes the oldest beyond the three. The new path,
// or nothing when there was no file or it couldn't be moved.
std::optional<std::string> move(const std::string& path, std::chrono::system_clock::time_point now);

} // namespace KeepAside

} // namespace velder
