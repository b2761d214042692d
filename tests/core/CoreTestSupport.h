#pragma once

// Small helpers shared by the core tests.

#include "core/Date.h"
#include "core/Log.h"
#include "core/Palette.h"
#include "support/TestSupport.h"

#include <cstdint>
#include <ctime>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace velder::test {

inline Date at(const char* iso)
{
    return *parseIso8601(iso);
}

// The eight bytes that make a PNG for the icon store.
inline const std::vector<std::uint8_t> pngSignature { 0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A };

// Exactly one line was logged: "Velder: <text>", where a "…" in the text stands for a reason of any length.
inline void expectOneLine(const LogCapture& log, const std::string& text)
{
    auto lines = log.lines();
    ASSERT_EQ(lines.size(), 1u) << testing::PrintToString(lines);
    std::string expected = "Velder: " + text;
    size_t reason = expected.find("\xE2\x80\xA6");
    if (reason == std::string::npos) {
        EXPECT_EQ(lines[0], expected);
        return;
    }
    std::string head = expected.substr(0, reason);
    std::string tail = expected.substr(reason + 3);
    EXPECT_TRUE(lines[0].starts_with(head) && lines[0].ends_with(tail) && lines[0].size() > head.size() + tail.size())
        << lines[0];
}

// A file of `size` zero bytes, with its folders, last written at `modified`.
inline std::string placeFile(const std::string& path, std::uintmax_t size,
    std::filesystem::file_time_type modified = std::filesystem::file_time_type::clock::now())
{
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    writeBytes(path, {});
    std::filesystem::resize_file(path, size);
    std::filesystem::last_write_time(path, modified);
    return path;
}

// Each of `has` is in the text and none of `hasNot`.
inline void expectParts(
    const std::string& text, const std::vector<std::string>& has, const std::vector<std::string>& hasNot = {})
{
    for (const auto& part : has) {
        EXPECT_NE(text.find(part), std::string::npos) << part << "\nmissing from\n" << text;
    }
    for (const auto& part : hasNot) {
        EXPECT_EQ(text.find(part), std::string::npos) << part << "\nfound in\n" << text;
    }
}

// What an internal page shows between its header and the end of its wrapper.
inline std::string bodyOf(const std::string& page)
{
    size_t start = page.find("</header>") + 9;
    return page.substr(start, page.rfind("</div></body>") - start);
}

// The colour settings: the settings form's field, the stored key, the colour it gives and the swatches it takes.
struct ColourSetting {
    const char* field;
    std::string AppSettings::*key;
    Color (*colour)(const AppSettings&);
    const std::vector<Swatch>& list;
};

inline std::vector<ColourSetting> colourSettings()
{
    return {
        { "TextColor", &AppSettings::textColor, Palette::textColor, Palette::ink() },
        { "HighlightColor", &AppSettings::highlightColor, Palette::highlightColor, Palette::ink() },
        { "PassiveColor", &AppSettings::passiveColor, Palette::passiveColor, Palette::ink() },
        { "FieldColor", &AppSettings::fieldColor, Palette::fieldColor, Palette::surface() },
        { "BorderColor", &AppSettings::borderColor, Palette::borderColor, Palette::surface() },
    };
}

// Local time for the duration of a test: a POSIX zone needs no zone database.
class ScopedTimeZone {
public:
    explicit ScopedTimeZone(const char* zone)
        : m_env("TZ", zone)
    {
        tzset();
    }
    ~ScopedTimeZone() { tzset(); }

private:
    ScopedEnv m_env;
};

} // namespace velder::test
