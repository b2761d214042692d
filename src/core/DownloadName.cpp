#include "core/DownloadName.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace velder::DownloadName {

std::string numbered(const std::string& name, int number)
{
    if (number <= 1) {
        return name;
    }
    std::string suffix = " (" + std::to_string(number) + ")";
    size_t dot = name.rfind('.');
    if (dot == std::string::npos || dot == 0 || dot + 1 == name.size()) {
        return name + suffix;
    }
    return name.substr(0, dot) + suffix + name.substr(dot);
}

std::optional<std::string> first(
    const std::string& folder, const std::string& name, const std::function<bool(const std::string& path)>& take)
{
    for (int number = 1; number <= lastNumber; ++number) {
        std::string path = folder + "/" + numbered(name, number);
        if (take(path)) {
            return path;
        }
    }
    return std::nullopt;
}

std::optional<std::string> reserve(const std::string& folder, const std::string& name)
{
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    bool unwritable = false;
    auto path = first(folder, name, [&](const std::string& candidate) {
        if (unwritable) {
            return false;
        }
        int fd = ::open(candidate.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
        if (fd >= 0) {
            ::close(fd);
            return true;
        }
        // Only a name already taken sends the search on; a folder we can't write to ends it.
        unwritable = errno != EEXIST;
        return false;
    });
    return path;
}

} // namespace velder::DownloadName
