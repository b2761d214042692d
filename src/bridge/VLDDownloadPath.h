#pragma once

#include <optional>
#include <string>

namespace velder {

// Where a download goes when nobody chose a place: the user's download folder, under a name no file has
// yet, reserved at once for this download (see DownloadName).
namespace VLDDownloadPath {

// The XDG download folder, else ~/Downloads.
std::string downloadDirectory();

// A reserved path for a download of that name in the download folder; nothing when all its numbers are
// taken or the folder can't be written.
std::optional<std::string> reserveDefaultPath(const std::string& name);

} // namespace VLDDownloadPath

} // namespace velder
