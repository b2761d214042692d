#pragma once

#include "core/BuildInfo.h"

#include <optional>
#include <string>
#include <string_view>

namespace velder {

// Why this build can't update itself, in the order the reasons are judged: the first that holds wins.
enum class UpdateChannelAbsence {
    frameworkMissing, // no updater backend was built in
    noPublicKey, // no key to verify an update with
    noFeed, // no feed, or one that isn't an https URL
    sourceTreeBuild, // running from a CMake build tree
};

// The words the menu item and the log use for the reason.
std::string_view absenceText(UpdateChannelAbsence absence);

// Judges the reasons in order. `info` is the installation's build information (none when it has no file),
// `executablePath` the running program.
std::optional<UpdateChannelAbsence> detectAbsence(
    bool hasBackend, const std::optional<BuildInfo>& info, const std::string& executablePath);

} // namespace velder
