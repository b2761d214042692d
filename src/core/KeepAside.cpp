#include "core/KeepAside.h"

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <vector>

namespace velder::KeepAside {

namespace fs = std::filesystem;

namespace {

// "20261125T164501Z": names that sort as the times they carry.
std::string stamp(std::chrono::system_clock::time_point now)
{
    std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    std::tm utc {};
    gmtime_r(&seconds, &utc);
    char text[32];
    std::strftime(text, sizeof text, "%Y%m%dT%H%M%SZ", &utc);
    return text;
}

} // namespace

std::optional<std::string> move(const std::string& path, std::chrono::system_clock::time_point now)
{
    std::error_code error;
    if (!fs::is_regular_file(path, error)) {
        return std::nullopt;
    }
    std::string prefix = fs::path(path).filename().string() + ".unreadable-";
    std::string aside = path + ".unreadable-" + stamp(now);
    // Two in one second: the later one gets a number, still sorting after the first.
    for (int n = 2; fs::exists(aside, error); ++n) {
        aside = path + ".unreadable-" + stamp(now) + "-" + std::to_string(n);
    }
    fs::rename(path, aside, error);
    if (error) {
        return std::nullopt;
    }
    fs::permissions(aside, fs::perms::owner_read | fs::perms::owner_write, error);

    std::vector<fs::path> asides;
    for (const auto& entry : fs::directory_iterator(fs::path(path).parent_path(), error)) {
        if (entry.path().filename().string().starts_with(prefix)) {
            asides.push_back(entry.path());
        }
    }
    std::sort(asides.begin(), asides.end());
    for (std::size_t i = 0; i + kept < asides.size(); ++i) {
        fs::remove(asides[i], error);
    }
    return aside;
}

} // namespace velder::KeepAside
