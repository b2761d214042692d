#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velder {

// A snapshot of one download, as the engine reported it.
struct VLDDownloadItem {
    std::uint32_t identifier = 0;
    std::string url;
    std::string suggestedFilename; // already passed through sanitisedFilename
    std::string fullPath; // empty until the destination is known
    std::int64_t receivedBytes = 0;
    std::int64_t totalBytes = 0; // 0 when unknown
    std::int32_t percentComplete = -1;
    bool isInProgress = false;
    bool isComplete = false;
    bool isCanceled = false; // also an interrupted download, which can't be resumed

    // A safe file name: "/", ":", "\" and control characters become "_", blanks at the ends and leading dots
    // go, "download" stands for nothing, and a long name is cut to 200 UTF-16 units keeping its extension.
    static std::string sanitisedFilename(std::string_view name);
};

} // namespace velder
