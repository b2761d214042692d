#include "core/BuildInfo.h"

#include "core/AppInfo.h"
#include "core/FileIO.h"

#include <filesystem>
#include <rapidjson/document.h>

namespace velder {

std::optional<BuildInfo> BuildInfo::read(const std::string& path)
{
    auto bytes = FileIO::readWhole(path);
    if (!bytes) {
        return std::nullopt;
    }
    rapidjson::Document document;
    document.Parse(reinterpret_cast<const char*>(bytes->data()), bytes->size());
    if (document.HasParseError() || !document.IsObject()) {
        return std::nullopt;
    }
    auto text = [&](const char* key) -> std::optional<std::string> {
        auto member = document.FindMember(key);
        if (member == document.MemberEnd() || !member->value.IsString()) {
            return std::nullopt;
        }
        return std::string(member->value.GetString(), member->value.GetStringLength());
    };
    BuildInfo info;
    info.feedUrl = text("SUFeedURL");
    info.publicEdKey = text("SUPublicEDKey");
    info.shortVersion = text("CFBundleShortVersionString");
    if (auto anchors = text("FeedTrustAnchors"); anchors && !anchors->empty()) {
        info.feedTrustAnchors = (std::filesystem::path(path).parent_path() / *anchors).lexically_normal().string();
    }
    return info;
}

std::optional<BuildInfo> BuildInfo::installed()
{
    return read(AppInfo::buildInfoFile());
}

} // namespace velder
