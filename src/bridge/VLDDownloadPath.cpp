#include "bridge/VLDDownloadPath.h"

#include "core/DownloadName.h"

#include <cstdlib>
#include <glib.h>

namespace velder::VLDDownloadPath {

std::string downloadDirectory()
{
    if (const char* folder = g_get_user_special_dir(G_USER_DIRECTORY_DOWNLOAD); folder && *folder) {
        return folder;
    }
    // $HOME is read afresh: GLib keeps the first home it saw for the whole process.
    const char* home = std::getenv("HOME");
    return std::string(home && *home ? home : g_get_home_dir()) + "/Downloads";
}

std::optional<std::string> reserveDefaultPath(const std::string& name)
{
    return DownloadName::reserve(downloadDirectory(), name);
}

} // namespace velder::VLDDownloadPath
