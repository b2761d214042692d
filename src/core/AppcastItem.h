#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace velder {

// One release in an appcast: an RSS <item> with its version and the enclosure that carries the archive.
struct AppcastItem {
    std::string version; // sparkle:version
    std::string shortVersionString; // sparkle:shortVersionString, may be empty
    std::string url; // the enclosure's url
    std::optional<std::int64_t> length; // the enclosure's length in bytes, when given
    std::string edSignature; // sparkle:edSignature, base64; empty when the item has none

    // The version shown to the user and compared with the running one.
    const std::string& displayVersionString() const
    {
        return shortVersionString.empty() ? version : shortVersionString;
    }

    bool operator==(const AppcastItem&) const = default;
};

} // namespace velder
