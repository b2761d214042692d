#include "core/SettingsPage.h"

#include "core/AppInfo.h"
#include "core/NotificationCenter.h"
#include "core/Palette.h"
#include "core/Theme.h"
#include "support/ScopedStores.h"

#include "CoreTestSupport.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <tuple>

using namespace velder;
using namespace velder::test;

namespace {

std::string unescape(std::string text)
{
    for (auto [entity, character] : std::vector<std::pair<std::string, char>> {
             { "&quot;", '"' }, { "&#39;", '\'' }, { "&lt;", '<' }, { "&gt;", '>' }, { "&amp;", '&' } }) {
        for (size_t at = text.find(entity); at != std::string::npos; at = text.find(entity, at + 1)) {
            text.replace(at, entity.size(), 1, character);
        }
    }
    return text;
}

// The settings form's inputs as (type, name, value, ticked). A quote or a bracket left unescaped in a value
// breaks its tag, and the count of tags read then falls short.
std::vector<std::tuple<std::string, std::string, std::string, bool>> inputsOf(const std::string& page)
{
    std::string form = page.substr(page.find("<form class=\"settings\""));
    form.resize(form.find("</form>"));
    static const std::regex input(R"re(<input type="(\w+)" name="(\w+)" value="([^"<>]*)"( checked)?>)re");
    std::vector<std::tuple<std::string, std::string, std::string, bool>> inputs;
    for (std::sregex_iterator it(form.begin(), form.end(), input), end; it != end; ++it) {
        inputs.emplace_back((*it)[1], (*it)[2], unescape((*it)[3]), (*it)[4].matched);
    }
    size_t tags = 0;
    for (size_t at = form.find("<input"); at != std::string::npos; at = form.find("<input", at + 1)) {
        ++tags;
    }
    EXPECT_EQ(inputs.size(), tags);
    return inputs;
}

// What submitting the form untouched sends: every text field, the ticked boxes and the chosen swatches.
std::map<std::string, std::string> submitted(const std::string& page)
{
    std::map<std::string, std::string> fields;
    for (const auto& [type, name, value, ticked] : inputsOf(page)) {
        if ((type != "radio" && type != "checkbox") || ticked) {
            EXPECT_TRUE(fields.emplace(name, value).second) << name << " is sent twice";
        }
    }
    return fields;
}

std::string queryOf(const std::map<std::string, std::string>& fields)
{
    std::string query;
    for (const auto& [name, value] : fields) {
        query += (query.empty() ? "" : "&") + name + "=";
        for (unsigned char c : value) {
            char escaped[4];
            std::snprintf(escaped, sizeof escaped, "%%%02X", c);
            query += escaped;
        }
    }
    return query;
}

} // namespace

// The untouched-form test below carries hostile texts through the form; here the notice and the swatches.
TEST(SettingsPage, TheNoticeIsEscapedAndEachColourOffersItsPalette)
{
    ScopedStores stores;
    std::string page = SettingsPage::render(SettingsPage::Notice::done("A <b> & c"), false);
    EXPECT_EQ(page.find("A <b>"), std::string::npos);
    EXPECT_NE(page.find("A &lt;b&gt; &amp; c"), std::string::npos);

    // Each colour offers exactly its palette, ink for what is read and surfaces for the frame, with the
    // stored colour ticked (*).
    for (const ColourSetting& f : colourSettings()) {
        SCOPED_TRACE(f.field);
        std::vector<std::string> offered, expected;
        for (const auto& [type, field, value, ticked] : inputsOf(page)) {
            if (field == f.field) {
                offered.push_back(type + " " + value + (ticked ? "*" : ""));
            }
        }
        for (const auto& swatch : f.list) {
            expected.push_back("radio " + swatch.key + (swatch.key == AppSettings().*f.key ? "*" : ""));
        }
        EXPECT_EQ(offered, expected);
    }
}

TEST(SettingsPage, SubmittingTheFormUntouchedChangesNothing)
{
    const std::vector<AppSettings> rows {
        AppSettings(),
        { .searchTemplate = "https://s.example/?q={q}&x=%20+y",
            .homepage = "https://h.example/?a=\"1\"&b=<2>'</form><script>x</script>",
            .newTabPage = "",
            .restoreSession = false,
            .archiveOldVersions = true,
            .textColor = "lavender",
            .highlightColor = "white",
            .passiveColor = "black",
            .fieldColor = "gunmetal",
            .borderColor = "silver",
            .locationEnabled = true,
            .askWhereToSaveDownloads = true,
            .maxHistory = 0 },
        { .textColor = "gunmetal", .borderColor = "Red" }, // outside their lists: they stay as stored
    };
    for (const AppSettings& settings : rows) {
        SCOPED_TRACE(&settings - rows.data());
        ScopedStores stores;
        stores.setSettings([&](AppSettings& s) { s = settings; });
        std::string query = queryOf(submitted(SettingsPage::render(SettingsPage::Notice::none(), false)));
        EXPECT_EQ(SettingsPage::save(FormValues(query)), "velder://settings/?saved=1");
        EXPECT_EQ(stores.vault().snapshot()->settings, settings) << query;
    }
}

TEST(SettingsPage, MaxHistoryTakesADecimalNumberOrNothing)
{
    struct Case {
        const char* given;
        std::int64_t stored; // 5000 is the value before; the vault holds it to 0...100000
    };
    for (const Case& c : std::vector<Case> { { "+250+", 250 }, { "%09+12%09", 12 }, { "%2B7", 7 }, { "100000", 100000 },
             { "999999", 100000 }, { "-5", 0 }, { "abc", 5000 }, { "", 5000 }, { "+", 5000 }, { "1+2", 5000 },
             { "%0A5", 5000 }, { "%2B-5", 5000 }, { "0x10", 5000 }, { "99999999999999999999", 5000 } }) {
        SCOPED_TRACE(c.given);
        ScopedStores stores;
        EXPECT_EQ(
            SettingsPage::save(FormValues(std::string("save=1&MaxHistory=") + c.given)), "velder://settings/?saved=1");
        EXPECT_EQ(stores.vault().snapshot()->settings.maxHistory, c.stored);
    }
}

TEST(SettingsPage, SaveTakesTextsAsTheyAreColoursFromTheirListsAndAbsentBoxesAsOff)
{
    ScopedStores stores;
    stores.setSettings([](AppSettings& s) {
        s.homepage = "https://h.example/";
        s.locationEnabled = true;
        s.askWhereToSaveDownloads = true;
    });
    AppSettings expected = stores.vault().snapshot()->settings;
    SettingsPage::save(FormValues("save=1&SearchTemplate=https%3A%2F%2Fs.example%2F%3Fq%3D%7Bq%7D&NewTabPage="
                                  "&TextColor=gunmetal&FieldColor=gunmetal&BorderColor=white&HighlightColor=Red"
                                  "&PassiveColor=red&LocationEnabled=0"));
    expected.searchTemplate = "https://s.example/?q={q}";
    expected.newTabPage = ""; // sent empty; the absent homepage stays
    expected.fieldColor = "gunmetal"; // a surface: not for text, and "Red" is no key
    expected.borderColor = "white";
    expected.passiveColor = "red";
    expected.restoreSession = false;
    expected.askWhereToSaveDownloads = false; // a present box is on whatever its value
    EXPECT_EQ(stores.vault().snapshot()->settings, expected);
}

TEST(SettingsPage, OnlyAColourChangePostsTheThemeNotification)
{
    ScopedStores stores;
    int posted = 0;
    auto token = NotificationCenter::defaultCenter().addObserver(
        Theme::didChangeNotification, [&](const Notification&) { ++posted; });
    SettingsPage::save(FormValues("save=1&MaxHistory=10&TextColor=cyan"));
    EXPECT_EQ(posted, 0);
    SettingsPage::save(FormValues("save=1&BorderColor=black"));
    EXPECT_EQ(posted, 1);
    SettingsPage::save(FormValues("save=1&BorderColor=nonsense"));
    EXPECT_EQ(posted, 1);
}

TEST(SettingsPage, TheArchiveDecision)
{
    struct Case {
        const char* name;
        bool wasOn;
        bool archived; // a file in the archive
        const char* form; // after "save=1&MaxHistory=9"
        bool asks;
        bool nowOn;
        bool archiveRemains;
    };
    for (const Case& c : std::vector<Case> {
             { "unticking with archives asks", true, true, "", true, true, true },
             { "unticking with none turns off", true, false, "", false, false, false },
             { "keep leaves it on", true, true, "&Archive=keep", false, true, true },
             { "delete purges and turns off", true, true, "&Archive=delete&ArchiveOldVersions=1", false, false, false },
             { "ticked stays on", true, true, "&ArchiveOldVersions=1", false, true, true },
             { "off stays off", false, true, "", false, false, true },
         }) {
        SCOPED_TRACE(c.name);
        ScopedStores stores;
        stores.setSettings([&](AppSettings& s) { s.archiveOldVersions = c.wasOn; });
        if (c.archived) {
            placeFile(AppInfo::archiveDirectory() + "/Velder-1.0.tar.xz", 2 * 1048576);
        }
        EXPECT_EQ(SettingsPage::save(FormValues(std::string("save=1&MaxHistory=9") + c.form)),
            c.asks ? "velder://settings/?confirmarchive=1" : "velder://settings/?saved=1");
        EXPECT_EQ(stores.vault().snapshot()->settings.archiveOldVersions, c.nowOn);
        EXPECT_EQ(stores.vault().snapshot()->settings.maxHistory, 9) << "the other fields are stored in every case";
        EXPECT_EQ(fileExists(AppInfo::archiveDirectory() + "/Velder-1.0.tar.xz"), c.archiveRemains);
    }
}

TEST(SettingsPage, TheArchiveQuestionCountsWhatIsOnDisk)
{
    ScopedStores stores;
    stores.setSettings([](AppSettings& s) { s.archiveOldVersions = true; });
    placeFile(AppInfo::archiveDirectory() + "/Velder-1.0.tar.xz", 3 * 1048576 + 5);
    std::string page = SettingsPage::render(SettingsPage::Notice::none(), true);
    EXPECT_EQ(submitted(page).count("ArchiveOldVersions"), 0u) << "the box shows as the user left it";
    expectParts(page,
        { "1 archived payload is still on disk, taking 3 MB.", "name=\"Archive\" value=\"delete\"",
            "name=\"Archive\" value=\"keep\"" });
    EXPECT_EQ(SettingsPage::render(SettingsPage::Notice::none(), false).find("name=\"Archive\""), std::string::npos);
}

TEST(SettingsPage, TickingArchivingCapturesTheStagedInstallerOnce)
{
    ScopedStores stores;
    const std::string staged = AppInfo::updaterCacheDirectory() + "/PersistentDownloads/";
    placeFile(staged + "Velder-2.0.tar.xz", 1048577);
    SettingsPage::save(FormValues("save=1&ArchiveOldVersions=1"));
    EXPECT_TRUE(fileExists(AppInfo::archiveDirectory() + "/Velder-2.0.tar.xz"));
    placeFile(staged + "Velder-2.1.tar.xz", 1048578);
    SettingsPage::save(FormValues("save=1&ArchiveOldVersions=1"));
    EXPECT_FALSE(fileExists(AppInfo::archiveDirectory() + "/Velder-2.1.tar.xz")) << "already on: nothing is captured";
}
