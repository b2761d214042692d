#include "core/UpdateChannelAbsence.h"

#include "core/Text.h"

#include <filesystem>
#include <glib.h>

namespace velder {

std::string_view absenceText(UpdateChannelAbsence absence)
{
    switch (absence) {
    case UpdateChannelAbsence::frameworkMissing:
        return "This build has no updater.";
    case UpdateChannelAbsence::noPublicKey:
        return "This build cannot verify updates.";
    case UpdateChannelAbsence::noFeed:
        return "This build has no update channel.";
    case UpdateChannelAbsence::sourceTreeBuild:
        return "Running from a build directory.";
    }
    return {};
}

namespace {

// A URL whose scheme is exactly "https": no other case, no other scheme.
bool isHttpsUrl(const std::string& text)
{
    GUri* uri = g_uri_parse(text.c_str(), G_URI_FLAGS_NONE, nullptr);
    if (!uri) {
        return false;
    }
    g_uri_unref(uri);
    return text.starts_with("https:");
}

// A CMake build tree holds CMakeCache.txt at its top, some folders above the program it built.
bool isInBuildTree(const std::string& executablePath)
{
    std::error_code error;
    for (auto folder = std::filesystem::path(executablePath).parent_path(); folder.has_relative_path();
         folder = folder.parent_path()) {
        if (std::filesystem::exists(folder / "CMakeCache.txt", error)) {
            return true;
        }
    }
    return false;
}

} // namespace

std::optional<UpdateChannelAbsence> detectAbsence(
    bool hasBackend, const std::optional<BuildInfo>& info, const std::string& executablePath)
{
    if (!hasBackend) {
        return UpdateChannelAbsence::frameworkMissing;
    }
    if (!info || !info->publicEdKey || Text::trimmed(*info->publicEdKey).empty()) {
        return UpdateChannelAbsence::noPublicKey;
    }
    if (!info->feedUrl || !isHttpsUrl(*info->feedUrl)) {
        return UpdateChannelAbsence::noFeed;
    }
    if (isInBuildTree(executablePath)) {
        return UpdateChannelAbsence::sourceTreeBuild;
    }
    return std::nullopt;
}

} // namespace velder
