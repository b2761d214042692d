#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velder {

// Copies of the installers the updater stages, kept when "Archive previous versions" is on, so that an
// older build can be reinstalled by hand. The folder is the only state. Main thread.
namespace VersionArchive {

// A staged file counts only above 1 MiB, which keeps out the updater's small side files.
inline constexpr std::uintmax_t payloadFloor = 1048576;

struct Contents {
    std::int64_t count = 0;
    std::int64_t bytes = 0;

    bool operator==(const Contents&) const = default;
};

// Copies the newest staged installer into the archive; false when archiving is off, nothing is staged,
// the same file is archived already, or the copy failed (logged).
bool capture();
// The regular files at the top of the archive and their total size; nothing when it can't be listed.
Contents contents();
// Removes the archive with everything in it; failures are ignored.
void purge();
// "1.5 GB", "12 MB", "3 KB" (never below 1 KB).
std::string describe(std::int64_t bytes);

// The updater's cache folders, the downloads first: a payload there beats any being installed.
std::vector<std::string> updaterCaches();
// The newest file above the floor anywhere under the folder, hidden ones included.
std::optional<std::string> newestPayload(const std::string& folder);
std::optional<std::string> newestStagedPayload();

} // namespace VersionArchive

} // namespace velder
