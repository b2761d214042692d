#include "bridge/VLDDownloadPath.h"

#include "core/Format.h"

#include <cstdlib>
#include <glib.h>

namespace velder::VLDDownloadPath {

namespace {

constexpr int lastNumber = 999;

} // namespace

std::string downloadDirectory()
{
    if (const char* folder = g_get_user_special_dir(G_USER_DIRECTORY_DOWNLOAD); folder && *folder) {
        return folder;
    }
    // $HOME is read afresh: GLib keeps the first home it saw for the whole process.
    const char* home = std::getenv("HOME");
    return std::string(home && *home ? home : g_get_home_dir()) + "/Downloads";
}

std::string uniquePath(
    const std::string& directory, const std::string& name, const std::function<bool(const std::string&)>& exists)
{
    std::string first = directory + "/" + name;
    if (!exists(first)) {
        return first;
    }
    size_t dot = name.rfind('.');
    bool hasExtension = dot != std::string::npos && dot > 0 && dot + 1 < name.size();
    std::string stem = hasExtension ? name.substr(0, dot) : name;
    std::string extension = hasExtension ? name.substr(dot) : std::string();
    std::string candidate;
    for (int number = 2; number <= lastNumber; ++number) {
        candidate = directory + "/" + stem + format(" (%d)", number) + extension;
        if (!exists(candidate)) {
            break;
        }
    }
    return candidate;
}

std::string defaultPath(const std::string& name)
{
    return uniquePath(downloadDirectory(), name,
        [](const std::string& path) { return g_file_test(path.c_str(), G_FILE_TEST_EXISTS); });
}

} // namespace velder::VLDDownloadPath
