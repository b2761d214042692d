#include "support/ScopedInstall.h"

#include "core/AppInfo.h"

#include <filesystem>

namespace velder::test {

ScopedInstall::ScopedInstall(const std::map<std::string, std::string>& info, const std::string& folder)
    : m_root(m_dir.path() + "/" + folder)
{
    std::filesystem::create_directories(m_root + "/share/velder");
    std::filesystem::create_directories(m_root + "/bin");
    writeBytes(m_root + "/bin/velder", { '#', '!' });
    std::string json = "{";
    for (const auto& [key, value] : info) {
        json += (json.size() > 1 ? ",\"" : "\"") + key + "\":\"" + value + "\"";
    }
    json += "}";
    writeBytes(m_root + "/share/velder/velder-info.json", std::vector<std::uint8_t>(json.begin(), json.end()));
    AppInfo::overrideExecutablePath(m_root + "/bin/velder");
}

ScopedInstall::~ScopedInstall()
{
    AppInfo::overrideExecutablePath(std::nullopt);
}

} // namespace velder::test
