#include "core/VersionArchive.h"

#include "core/AppInfo.h"
#include "core/Log.h"
#include "core/Vault.h"

#include <algorithm>
#include <charconv>
#include <filesystem>

namespace velder::VersionArchive {

namespace fs = std::filesystem;

std::vector<std::string> updaterCaches()
{
    std::string base = AppInfo::updaterCacheDirectory();
    return { base + "/PersistentDownloads", base + "/Installation" };
}

std::optional<std::string> newestPayload(const std::string& folder)
{
    std::error_code error;
    fs::recursive_directory_iterator it(folder, error);
    if (error) {
        return std::nullopt;
    }
    std::optional<std::string> newest;
    fs::file_time_type newestTime;
    for (; it != fs::recursive_directory_iterator(); it.increment(error)) {
        if (error) {
            break;
        }
        std::error_code entryError;
        if (!it->is_regular_file(entryError) || entryError) {
            continue;
        }
        auto size = it->file_size(entryError);
        if (entryError || size <= payloadFloor) {
            continue;
        }
        auto modified = it->last_write_time(entryError);
        if (entryError) {
            continue;
        }
        // Only a strictly later file replaces the one held: of equal dates the first seen stays.
        if (!newest || modified > newestTime) {
            newest = it->path().string();
            newestTime = modified;
        }
    }
    return newest;
}

std::optional<std::string> newestStagedPayload()
{
    for (const auto& folder : updaterCaches()) {
        if (auto payload = newestPayload(folder)) {
            return payload;
        }
    }
    return std::nullopt;
}

bool capture()
{
    if (!Vault::shared().snapshot()->settings.archiveOldVersions) {
        return false;
    }
    auto payload = newestStagedPayload();
    if (!payload) {
        return false;
    }
    auto fail = [](const std::error_code& error) {
        log("Velder: could not archive the staged payload \xE2\x80\x94 " + error.message());
        return false;
    };
    std::error_code error;
    fs::path folder = AppInfo::archiveDirectory();
    fs::create_directories(folder, error);
    if (error) {
        return fail(error);
    }
    fs::path source = *payload;
    fs::path destination = folder / source.filename();
    std::error_code sizeError;
    auto sourceSize = fs::file_size(source, sizeError);
    if (!sizeError) {
        auto destinationSize = fs::file_size(destination, sizeError);
        if (!sizeError && destinationSize == sourceSize) {
            return false; // taken to be archived already
        }
    }
    if (fs::exists(fs::symlink_status(destination, error))) {
        fs::remove(destination, error);
        if (error) {
            return fail(error);
        }
    }
    fs::copy_file(source, destination, error);
    if (error) {
        return fail(error);
    }
    log("Velder: archived " + destination.filename().string());
    return true;
}

Contents contents()
{
    Contents result;
    std::error_code error;
    fs::directory_iterator it(AppInfo::archiveDirectory(), error);
    if (error) {
        return {};
    }
    for (; it != fs::directory_iterator(); it.increment(error)) {
        if (error) {
            break;
        }
        if (it->path().filename().string().starts_with('.')) {
            continue;
        }
        std::error_code entryError;
        if (!it->is_regular_file(entryError) || entryError) {
            continue;
        }
        result.count += 1;
        auto size = it->file_size(entryError);
        if (!entryError) {
            result.bytes += static_cast<std::int64_t>(size);
        }
    }
    return result;
}

void purge()
{
    std::error_code ignored;
    fs::remove_all(AppInfo::archiveDirectory(), ignored);
}

std::string describe(std::int64_t bytes)
{
    if (bytes >= 1073741824) {
        // to_chars: a point whatever the user's locale, as with the other sizes.
        char text[32];
        auto end = std::to_chars(
            text, text + sizeof text, static_cast<double>(bytes) / 1073741824.0, std::chars_format::fixed, 1)
                       .ptr;
        return std::string(text, end) + " GB";
    }
    if (bytes >= 1048576) {
        return std::to_string(bytes >> 20) + " MB";
    }
    return std::to_string(std::max<std::int64_t>(bytes / 1024, 1)) + " KB";
}

} // namespace velder::VersionArchive
