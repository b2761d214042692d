#pragma once

#include <functional>
#include <string>

namespace velder {

// Where a download goes when nobody chose a place: the user's download folder, under a name no file has
// yet. The engine neither makes a name unique nor overwrites, so the bridge does the former.
namespace VLDDownloadPath {

// The XDG download folder, else ~/Downloads.
std::string downloadDirectory();

// `directory`/`name`, or the first of "stem (2).ext" ... "stem (999).ext" for which `exists` is false
// (the last of them when all exist).
std::string uniquePath(
    const std::string& directory, const std::string& name, const std::function<bool(const std::string&)>& exists);

// The default path of a download of that name, made unique against the files on disk.
std::string defaultPath(const std::string& name);

} // namespace VLDDownloadPath

} // namespace velder
