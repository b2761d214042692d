#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace velder {

namespace FileIO {

// The whole file, or nothing with the reason in `error`.
std::optional<std::vector<std::uint8_t>> readWhole(const std::string& path, std::string* error = nullptr);

// Replaces the file atomically: the bytes go to a new file of mode 0600 beside it, which is then
// renamed over the old one. A reader of the name sees the old content or the new, never a mixture,
// also when the writer dies half-way.
bool writeAtomically(const std::string& path, std::span<const std::uint8_t> bytes, std::string* error = nullptr);

// chmod; false when it fails.
bool setMode(const std::string& path, unsigned mode);

} // namespace FileIO

} // namespace velder
