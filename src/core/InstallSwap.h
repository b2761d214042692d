#pragma once

#include <optional>
#include <string>

namespace velder {

// How an unpacked update takes the place of the installation. The new tree is copied beside the install
// root as "<root>.incoming" (so that the last steps are renames on one file system), the root becomes
// "<root>.previous", and "<root>.incoming" becomes the root. The previous tree stays until the new version
// has started once. Main thread; the copy holds it for as long as it takes.
namespace InstallSwap {

// Nothing when the tree at `staged` is now the root; else why not, with the root as it was before.
std::optional<std::string> swap(const std::string& root, const std::string& staged);

// The tree the last swap put aside, if any.
std::string previousOf(const std::string& root);
// Removes it; the new version calls this once it has started. Failures are ignored.
void removePrevious(const std::string& root);

} // namespace InstallSwap

} // namespace velder
