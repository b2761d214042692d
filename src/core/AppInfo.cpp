#include "core/AppInfo.h"

#include "core/BuildInfo.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <pwd.h>
#include <unistd.h>

#ifndef VELDER_VERSION
#define VELDER_VERSION "0.0"
#endif

namespace velder::AppInfo {

namespace fs = std::filesystem;

namespace {

std::string homeDirectory()
{
    const char* home = std::getenv("HOME");
    if (home && *home) {
        return home;
    }
    if (passwd* entry = getpwuid(getuid()); entry && entry->pw_dir && *entry->pw_dir) {
        return entry->pw_dir;
    }
    // Without any home the program can't place a file: a fault of the machine, not something to run on.
    std::abort();
}

// An XDG base directory: the variable when it holds an absolute path, else the fallback under $HOME.
std::string xdgDirectory(const char* variable, const char* fallbackUnderHome)
{
    const char* value = std::getenv(variable);
    if (value && value[0] == '/') {
        return value;
    }
    return homeDirectory() + "/" + fallbackUnderHome;
}

} // namespace

std::string dataDirectory()
{
    return xdgDirectory("XDG_DATA_HOME", ".local/share") + "/Velder";
}

std::string instanceId()
{
    std::string folder = dataDirectory();
    if (folder == homeDirectory() + "/.local/share/Velder") {
        return applicationId;
    }
    // FNV-1a: stable across runs and builds, unlike std::hash.
    std::uint32_t hash = 2166136261u;
    for (unsigned char c : folder) {
        hash = (hash ^ c) * 16777619u;
    }
    char suffix[16];
    std::snprintf(suffix, sizeof suffix, "%08x", hash);
    return std::string(applicationId) + ".Profile" + suffix;
}

std::string cacheDirectory()
{
    return xdgDirectory("XDG_CACHE_HOME", ".cache") + "/Velder";
}

std::string keyFile()
{
    return dataDirectory() + "/vault.key";
}
std::string vaultFile()
{
    return dataDirectory() + "/vault.bin";
}
std::string historyFile()
{
    return dataDirectory() + "/history.bin";
}
std::string faviconFile()
{
    return dataDirectory() + "/favicons.bin";
}
std::string engineDirectory()
{
    return dataDirectory() + "/engine";
}
std::string engineCacheDirectory()
{
    return cacheDirectory() + "/engine-cache";
}
std::string engineLogFile()
{
    return dataDirectory() + "/engine_log.txt";
}
std::string previousEngineLogFile()
{
    return dataDirectory() + "/engine_log.previous.txt";
}
std::string archiveDirectory()
{
    return cacheDirectory() + "/archive";
}
std::string updaterCacheDirectory()
{
    return cacheDirectory() + "/updater";
}

namespace {
std::optional<std::string>& executableOverride()
{
    static std::optional<std::string> path;
    return path;
}
} // namespace

std::string executablePath()
{
    if (executableOverride()) {
        return *executableOverride();
    }
    std::error_code error;
    auto path = fs::read_symlink("/proc/self/exe", error);
    return error ? std::string() : path.string();
}

void overrideExecutablePath(std::optional<std::string> path)
{
    executableOverride() = std::move(path);
}

std::string installRoot()
{
    fs::path folder = fs::path(executablePath()).parent_path();
    return folder.parent_path().string();
}

std::string buildInfoFile()
{
    std::string root = installRoot();
    return root.empty() ? std::string() : root + "/share/velder/velder-info.json";
}

std::string version()
{
    if (auto info = BuildInfo::installed(); info && info->shortVersion && !info->shortVersion->empty()) {
        return *info->shortVersion;
    }
    std::string value = VELDER_VERSION;
    return value.empty() ? "0.0" : value;
}

void prepareDirectories()
{
    std::error_code ignored;
    fs::create_directories(dataDirectory(), ignored);
}

void rotateEngineLogIfLarge(std::uint64_t limitBytes)
{
    std::error_code error;
    auto size = fs::file_size(engineLogFile(), error);
    if (error || size <= limitBytes) {
        return;
    }
    fs::remove(previousEngineLogFile(), error);
    fs::rename(engineLogFile(), previousEngineLogFile(), error);
}

} // namespace velder::AppInfo
