#pragma once

#include <functional>
#include <optional>
#include <string>

namespace velder {

// The one rule for the names a download may take in a folder: "report.pdf", then "report (2).pdf" up to
// "report (999).pdf"; after that, none. The number goes before the last extension only ("archive.tar (2).gz");
// ".bashrc" and "notes." have no extension, so theirs goes at the end.
namespace DownloadName {

constexpr int lastNumber = 999;

// The name carrying `number` (1 is the name itself).
std::string numbered(const std::string& name, int number);

// The first of the name's paths in `folder` that `take` accepts; nothing when it accepts none of them.
std::optional<std::string> first(
    const std::string& folder, const std::string& name, const std::function<bool(const std::string& path)>& take);

// The first path that could be made at once as an empty file of ours (an exclusive create). The file holds
// the name for the download that writes over it, so a second download of the same name started meanwhile
// numbers on instead of failing.
std::optional<std::string> reserve(const std::string& folder, const std::string& name);

} // namespace DownloadName

} // namespace velder
