#include "core/ArchiveEntryRule.h"

#include <filesystem>

namespace velder::ArchiveEntryRule {

namespace {

// Whether a relative path, read from `from` (a folder inside the top, as a relative path), stays inside.
bool staysInside(const std::filesystem::path& from, const std::filesystem::path& path)
{
    int depth = 0;
    for (const auto& part : from / path) {
        if (part == "..") {
            if (--depth < 0) {
                return false;
            }
        } else if (part != "." && !part.empty()) {
            ++depth;
        }
    }
    return true;
}

} // namespace

std::optional<std::string> refusal(const std::string& path, Kind kind, const std::string& target)
{
    std::filesystem::path entry(path);
    if (path.empty() || entry.is_absolute()) {
        return "the entry \"" + path + "\" is absolute";
    }
    if (!staysInside({}, entry)) {
        return "the entry \"" + path + "\" climbs out of the archive";
    }
    std::filesystem::path linked(target);
    if (kind != Kind::plain && (target.empty() || linked.is_absolute())) {
        return "the link \"" + path + "\" points outside the archive";
    }
    std::filesystem::path from = kind == Kind::symbolicLink ? entry.parent_path() : std::filesystem::path();
    if (kind != Kind::plain && !staysInside(from, linked)) {
        return "the link \"" + path + "\" points outside the archive";
    }
    return std::nullopt;
}

} // namespace velder::ArchiveEntryRule
