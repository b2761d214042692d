#include "core/VldJson.h"
#include "core/FaviconData.h"
#include "core/VaultData.h"

#include "CoreTestSupport.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <rapidjson/document.h>

using namespace velder;
using namespace velder::test;

namespace {

std::vector<char> bytesOf(const std::string& text)
{
    return std::vector<char>(text.begin(), text.end());
}

} // namespace

TEST(VldJson, IsDataKeyLooksAtEveryKeyButTheLast)
{
    struct Row {
        std::vector<std::string_view> path;
        bool expected;
    };
    std::vector<Row> rows = {
        { {}, false },
        { { "locationSites" }, false },
        { { "settings", "maxHistory" }, false },
        { { "locationSites", "https://A.example" }, true },
        { { "LocationSites", "https://A.example" }, true },
        { { "icons", "a.example", "fetchedUtc" }, true },
        { { "Icons", "a.example" }, true },
        { { "ICONS", "a.example" }, false },
        { { "windows", "0", "activeTab" }, false },
        { { "settings", "icons" }, false },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows.data());
        EXPECT_EQ(VldJson::isDataKey(row.path), row.expected);
    }
}

TEST(VldJson, DataKeysAndOptionalsAndDates)
{
    VaultData data;
    data.locationSites = { { "https://A.example", true }, { "http://b.example:8080", false } };
    data.windows.push_back({ { "https://a.example/" }, 0, 10, std::nullopt, 900, 700, WindowState::zoomed });
    data.dashboardPins.push_back({ "a.example", "https://a.example/x", std::nullopt });
    data.dashboardIgnored = { "z.example" };
    data.settings = { .homepage = "h\"\\\n\u00fc", .restoreSession = false, .maxHistory = 7 };
    data.currentZoomLevel = 1.25;
    data.updateApplyFailed = "2.0.1";
    data.lastUpdateCheckUtc = at("2026-11-01T12:30:45Z") + std::chrono::milliseconds(999);
    std::string json = VldJson::encode(data);

    EXPECT_NE(
        json.find(R"("LocationSites":{"http://b.example:8080":false,"https://A.example":true})"), std::string::npos);
    EXPECT_NE(json.find(R"("Windows":[{"ActiveTab":0,"H":700,"State":"zoomed","Tabs":["https://a.example/"],)"
                        R"("W":900,"X":10}])"),
        std::string::npos);
    EXPECT_NE(json.find(R"("DashboardPins":[{"Site":"a.example","Url":"https://a.example/x"}])"), std::string::npos);
    EXPECT_NE(json.find(R"("LastUpdateCheckUtc":"2026-11-01T12:30:45Z")"), std::string::npos);
    EXPECT_EQ(json.find("null"), std::string::npos);
    EXPECT_EQ(json.find('\n'), std::string::npos);
    EXPECT_LT(json.find("\"CurrentZoomLevel\""), json.find("\"DashboardIgnored\"")) << "keys in sorted order";
    EXPECT_LT(json.find("\"Settings\""), json.find("\"Windows\""));
    EXPECT_LT(json.find("\"ArchiveOldVersions\""), json.find("\"TextColor\""));

    // Read back, everything is as it was but the date, which is kept to the second.
    data.lastUpdateCheckUtc = at("2026-11-01T12:30:45Z");
    EXPECT_EQ(VldJson::decode(bytesOf(json), VaultData()), data);
}

TEST(VldJson, EveryDepthBelowADataKeyedPropertyStaysAsItIs)
{
    FaviconData record;
    record.icons["B.example"] = { "image/png", "AAAA", at("2026-11-02T00:00:00Z") };
    std::string json = VldJson::encode(record);
    EXPECT_EQ(
        json, R"({"Icons":{"B.example":{"data":"AAAA","fetchedUtc":"2026-11-02T00:00:00Z","mime":"image/png"}}})");
    EXPECT_EQ(VldJson::decode(bytesOf(json), FaviconData()), record);

    // Below "Icons" the keys are data: an upper-cased inner key is not the field "mime".
    EXPECT_THROW(
        VldJson::decode(
            bytesOf(R"({"Icons":{"a":{"Mime":"x","data":"y","fetchedUtc":"2026-11-02T00:00:00Z"}}})"), FaviconData()),
        JsonDecodeError);
}

TEST(VldJson, StoredFilesMergeOverTheDefaults)
{
    struct Row {
        const char* name;
        const char* stored;
        std::function<void(const VaultData&)> check;
    };
    std::vector<Row> rows = {
        { "empty object gives the defaults", "{}", [](const VaultData& d) { EXPECT_EQ(d, VaultData()); } },
        { "a field missing inside Settings takes its default", R"({"Settings":{"Homepage":"https://h.example/"}})",
            [](const VaultData& d) {
                AppSettings expected;
                expected.homepage = "https://h.example/";
                EXPECT_EQ(d.settings, expected);
            } },
        { "a null optional is absent", R"({"LastUpdateCheckUtc":null,"UpdateApplyFailed":null})",
            [](const VaultData& d) {
                EXPECT_FALSE(d.lastUpdateCheckUtc);
                EXPECT_FALSE(d.updateApplyFailed);
            } },
        { "an integral double reads as an integer", R"({"Settings":{"MaxHistory":250.0}})",
            [](const VaultData& d) { EXPECT_EQ(d.settings.maxHistory, 250); } },
        { "arrays are replaced whole", R"({"DashboardIgnored":["z.example"]})",
            [](const VaultData& d) { EXPECT_EQ(d.dashboardIgnored, std::vector<std::string> { "z.example" }); } },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        row.check(VldJson::decode(bytesOf(row.stored), VaultData()));
    }
}

TEST(VldJson, ADoubleReadsBackAsTheOneWritten)
{
    VaultData zoomed;
    zoomed.currentZoomLevel = -0.92223730368547774; // its last digit is lost to a parser of ordinary precision
    EXPECT_EQ(VldJson::decode(bytesOf(VldJson::encode(zoomed)), VaultData()).currentZoomLevel, zoomed.currentZoomLevel);
    // A long number with a far exponent is read exactly too (RapidJSON's own full precision read past its tables).
    auto tiny = VldJson::decode(bytesOf(R"({"CurrentZoomLevel":30000000001428543432e-0337})"), VaultData());
    EXPECT_EQ(tiny.currentZoomLevel, 30000000001428543432e-0337);
    zoomed.currentZoomLevel = -0.0; // read back as 0, so written as 0: the text written after a read is the same
    EXPECT_EQ(VldJson::encode(zoomed), VldJson::encode(VaultData()));
}

// Text is scanned eight bytes at a time: a character to escape is found wherever it falls in a block, and
// read back by another parser as it was.
TEST(VldJson, StringsReadBackAsWrittenWhereverTheEscapesFall)
{
    const std::string plain = "abcdefghijklmnopq"; // 17 bytes: two blocks and one over
    std::vector<std::string> texts { "", "\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80 \x7F\xA0 plain" };
    for (char special : { '"', '\\', '\n', '\x01', '\x1F' }) {
        for (std::size_t at : { 0, 7, 8, 15, 16 }) {
            texts.push_back(plain.substr(0, at) + special + plain.substr(at));
        }
    }
    for (const std::string& text : texts) {
        SCOPED_TRACE(text);
        JsonOutput output;
        output.string(text);
        EXPECT_TRUE(std::ranges::none_of(output.text(), [](unsigned char c) { return c < 0x20; }));
        rapidjson::Document parsed;
        parsed.Parse(output.text().data(), output.text().size());
        ASSERT_TRUE(parsed.IsString());
        EXPECT_EQ(std::string(parsed.GetString(), parsed.GetStringLength()), text);
    }
}

// Beside the failing files of the shared stored data (StoredInteropTest), the other ways a file fails.
TEST(VldJson, StrictDecodingFailsTheWholeFile)
{
    const char* failing[] = {
        R"("text")", // not an object at the top: decoded directly, and fails
        R"({"Settings":5})", // a stored non-object replaces the default object
        R"({"CurrentZoomLevel":"2"})", // a field of the wrong type
        R"({"CurrentZoomLevel":2e308})", // too large for a double
        R"({"Settings":{"MaxHistory":2.5}})", R"({"Settings":{"RestoreSession":1}})",
        R"({"Windows":[{"Tabs":["a"],"ActiveTab":0}]})", // State is required
        R"({"Windows":[{"Tabs":["a"],"ActiveTab":0,"State":3}]})", R"({"LastUpdateCheckUtc":"yesterday"})",
        R"({"LocationSites":{"https://a.example":"yes"}})",
        R"({"Settings":)", // not JSON
    };
    for (const char* stored : failing) {
        SCOPED_TRACE(stored);
        EXPECT_THROW(VldJson::decode(bytesOf(stored), VaultData()), JsonDecodeError);
    }
    // Nested deeper than any stack would hold a parser that recurses.
    std::string deep = R"({"Windows":)" + std::string(1000000, '[');
    EXPECT_THROW(VldJson::decode(bytesOf(deep), VaultData()), JsonDecodeError);
}
