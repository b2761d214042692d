#pragma once

#include <optional>
#include <string>

namespace velder {

// Unpacks an update archive (.tar.xz) with libarchive. Every entry is judged before anything is written:
// one that is absolute, climbs out with "..", is a link pointing outside, or is neither a file, a folder
// nor a link refuses the whole archive, and nothing of it stays on disk.
namespace ArchiveUnpacker {

// Nothing when the archive now lies unpacked at `destination` (replacing what was there); else why not.
std::optional<std::string> unpack(const std::string& archive, const std::string& destination);

} // namespace ArchiveUnpacker

} // namespace velder
