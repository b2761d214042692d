#pragma once

#include <cstdint>
#include <string>

namespace velder {

class JsonObjectIn;
class JsonObjectOut;

// Every setting of the program, edited on velder://settings/ and kept in the vault.
struct AppSettings {
    static constexpr std::int64_t maxHistoryLimit = 100000;

    std::string searchTemplate = "https://duckduckgo.com/?q={q}"; // {q} becomes the URL-encoded query
    std::string homepage = "velder://about/"; // where a window opens
    std::string newTabPage = "about:blank"; // where a tab opens
    bool restoreSession = true;
    bool archiveOldVersions = false;
    std::string textColor = "cyan"; // a key of Palette::ink
    std::string highlightColor = "magenta"; // a key of Palette::ink
    std::string passiveColor = "grey"; // a key of Palette::ink
    std::string fieldColor = "charcoal"; // a key of Palette::surface
    std::string borderColor = "gunmetal"; // a key of Palette::surface
    bool locationEnabled = false;
    bool askWhereToSaveDownloads = false;
    std::int64_t maxHistory = 5000; // always 0 to 100000

    bool operator==(const AppSettings&) const = default;
};

void encodeJson(const AppSettings&, JsonObjectOut&);
void decodeJson(const JsonObjectIn&, AppSettings&);

} // namespace velder
