#include "core/SettingsPage.h"

#include "core/AppInfo.h"
#include "core/Log.h"
#include "core/NotificationCenter.h"
#include "core/Theme.h"
#include "support/FakePageHost.h"
#include "support/ScopedStores.h"

#include <filesystem>
#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;
namespace fs = std::filesystem;

namespace {

std::string sectionOf(const std::string& page, const std::string& heading, const std::string& end)
{
    size_t start = page.find("<h2>" + heading + "</h2>");
    return page.substr(start, page.find(end, start) + end.size() - start);
}

// A file of the given size in the updater's cache (sparse: no real data is written).
std::string stage(const std::string& folder, const std::string& name, std::uintmax_t size)
{
    std::string dir = AppInfo::updaterCacheDirectory() + "/" + folder;
    fs::create_directories(dir);
    std::string path = dir + "/" + name;
    writeBytes(path, {});
    fs::resize_file(path, size);
    return path;
}

void putInArchive(const std::string& name, std::uintmax_t size)
{
    fs::create_directories(AppInfo::archiveDirectory());
    writeBytes(AppInfo::archiveDirectory() + "/" + name, {});
    fs::resize_file(AppInfo::archiveDirectory() + "/" + name, size);
}

struct ThemeObserver {
    int count = 0;
    NotificationCenter::Token token = NotificationCenter::defaultCenter().addObserver(
        Theme::didChangeNotification, [this](const Notification&) { ++count; });
};

} // namespace

TEST(SettingsPage, RenderGeneralAndColors)
{
    ScopedStores stores;
    stores.setSettings([](AppSettings& s) {
        s.homepage = "https://h.example/?a=\"1\"&b=<2>";
        s.maxHistory = 250;
        s.passiveColor = "pink";
    });
    std::string page = SettingsPage::render(SettingsPage::Notice::none(), false);
    EXPECT_NE(page.find("<title>Settings</title>"), std::string::npos);
    EXPECT_NE(page.find("</header><form class=\"settings\" id=\"settings\" method=\"get\" "
                        "action=\"velder://settings/\">\n<input type=\"hidden\" name=\"save\" value=\"1\">\n<h2>"
                        "General</h2>"),
        std::string::npos);
    EXPECT_EQ(sectionOf(page, "General", "</div>"),
        "<h2>General</h2>\n<div class=\"grid\">\n"
        "<span class=\"lbl\" title=\"{q} is replaced with the URL-encoded query.\">Search template</span>\n"
        "<input type=\"text\" name=\"SearchTemplate\" value=\"https://duckduckgo.com/?q={q}\">\n"
        "<span class=\"lbl\" title=\"Where a window opens: startup, Ctrl+N, and Home.\">Homepage</span>\n"
        "<input type=\"text\" name=\"Homepage\" value=\"https://h.example/?a=&quot;1&quot;&amp;b=&lt;2&gt;\">\n"
        "<span class=\"lbl\" title=\"Where a tab opens: Ctrl+T and the + button.\">New tab page</span>\n"
        "<input type=\"text\" name=\"NewTabPage\" value=\"about:blank\">\n"
        "<span class=\"lbl\" title=\"0 to 100000. Zero means keep nothing.\">Max history</span>\n"
        "<input type=\"text\" name=\"MaxHistory\" value=\"250\">\n</div>");

    std::string colors = sectionOf(page, "Colors", "\n</div>");
    EXPECT_TRUE(colors.starts_with("<h2>Colors</h2>\n<div class=\"grid\">\n<span class=\"lbl\" title=\"What you are "
                                   "meant to read.\">Text</span>\n<div class=\"swatches\"><label class=\"sw\" "
                                   "title=\"Black\"><input type=\"radio\" name=\"TextColor\" value=\"black\"><i "
                                   "style=\"background:#000000\"></i></label><label class=\"sw\" title=\"Charcoal\">"))
        << colors;
    EXPECT_NE(colors.find("<label class=\"sw\" title=\"Light Pink\"><input type=\"radio\" name=\"PassiveColor\" "
                          "value=\"pink\" checked><i style=\"background:#ffb6c1\"></i></label>"),
        std::string::npos);
    EXPECT_NE(colors.find("<input type=\"radio\" name=\"TextColor\" value=\"cyan\" checked>"), std::string::npos);
    EXPECT_NE(colors.find("</div>\n<span class=\"lbl\" title=\"The window frame: the title bar row the tabs sit "
                          "on.\">Border</span>\n<div class=\"swatches\"><label class=\"sw\" title=\"Black\"><input "
                          "type=\"radio\" name=\"BorderColor\" value=\"black\"><i style=\"background:#000000\"></i>"
                          "</label><label class=\"sw\" title=\"Gunmetal\"><input type=\"radio\" name=\"BorderColor\" "
                          "value=\"gunmetal\" checked>"),
        std::string::npos);
    EXPECT_EQ(std::count(colors.begin(), colors.end(), '\n'), 12) << "five fields of two lines, one per line";
    size_t swatches = 0;
    for (size_t at = colors.find("class=\"sw\""); at != std::string::npos; at = colors.find("class=\"sw\"", at + 1)) {
        ++swatches;
    }
    EXPECT_EQ(swatches, 3 * 14 + 2 * 15u);
    EXPECT_EQ(colors.find("name=\"TextColor\" value=\"gunmetal\""), std::string::npos);
}

TEST(SettingsPage, RenderOptionsMaintenanceAndNotices)
{
    ScopedStores stores;
    stores.setSettings([](AppSettings& s) {
        s.restoreSession = false;
        s.locationEnabled = true;
        s.archiveOldVersions = true;
    });
    std::string page = SettingsPage::render(SettingsPage::Notice::none(), false);
    EXPECT_EQ(sectionOf(page, "Options", "\n</div>"),
        "<h2>Options</h2>\n<div class=\"checks\">\n"
        "<label class=\"check\" title=\"Reopen the windows and tabs that were open at quit.\"><input "
        "type=\"checkbox\" name=\"RestoreSession\" value=\"1\">Restore session</label>\n"
        "<label class=\"check\" title=\"Whether sites may ask for your location at all. Off hides the pin "
        "outright.\"><input type=\"checkbox\" name=\"LocationEnabled\" value=\"1\" checked>Location services</label>\n"
        "<label class=\"check\" title=\"Show a save panel for every download.\"><input type=\"checkbox\" "
        "name=\"AskWhereToSaveDownloads\" value=\"1\">Ask where to save downloads</label>\n</div>");
    const std::string box = "<h2>Maintenance</h2>\n<div class=\"checks\"><div class=\"row\"><label class=\"check\" "
                            "title=\"Keep a copy of every installer the updater stages.\"><input type=\"checkbox\" "
                            "name=\"ArchiveOldVersions\" value=\"1\"";
    EXPECT_NE(page.find(box
                  + " checked>Archive previous versions</label></div></div>\n\n<div class=\"actions\">&nbsp;"
                    "</div>\n<noscript><div class=\"actions\"><button type=\"submit\">Save</button></div>"
                    "</noscript>\n</form>\n<form method=\"get\" action=\"velder://settings/\">\n  <div "
                    "class=\"actions\">\n    <button class=\"danger\" type=\"submit\" name=\"clear\" "
                    "value=\"history\">Clear history</button>\n            <button class=\"danger\" "
                    "type=\"submit\" name=\"clear\" value=\"browsingdata\">Clear cookies &amp; "
                    "cache</button>\n            <button class=\"danger\" type=\"submit\" name=\"clear\" "
                    "value=\"location\">Forget location answers</button>\n  </div>\n</form>\n<script>"),
        std::string::npos);

    // While the question stands the box shows unticked, and the question counts what is on disk.
    putInArchive("Velder-1.0.tar.xz", 3 * 1048576 + 5);
    page = SettingsPage::render(SettingsPage::Notice::none(), true);
    EXPECT_NE(page.find(box
                  + ">Archive previous versions</label></div></div>\n<div class=\"warn\">\n  <span>1 "
                    "archived payload is still on disk, taking 3 MB.</span>\n  <button class=\"danger "
                    "small\" type=\"submit\" name=\"Archive\" value=\"delete\">Delete them</button>\n  "
                    "<button class=\"quiet small\" type=\"submit\" name=\"Archive\" value=\"keep\">Keep "
                    "archiving</button>\n</div>\n<div class=\"actions\">"),
        std::string::npos);
    fs::remove_all(AppInfo::archiveDirectory());
    EXPECT_NE(SettingsPage::render(SettingsPage::Notice::none(), true)
                  .find("<span>0 archived payloads are still on "
                        "disk, taking 1 KB.</span>"),
        std::string::npos);

    struct Case {
        SettingsPage::Notice notice;
        const char* html;
    };
    for (const Case& c : std::vector<Case> {
             { SettingsPage::Notice::saved(), "<span class=\"saved\">Saved.</span>" },
             { SettingsPage::Notice::done("A <b> & c"), "<span class=\"saved\">A &lt;b&gt; &amp; c</span>" },
         }) {
        SCOPED_TRACE(c.html);
        EXPECT_NE(
            SettingsPage::render(c.notice, false).find(std::string("<div class=\"actions\">") + c.html + "</div>"),
            std::string::npos);
    }
}

TEST(SettingsPage, SaveValidatesEachField)
{
    struct Case {
        const char* query;
        std::function<void(AppSettings&)> expect; // applied to the settings before the save
    };
    const char* flags = "&RestoreSession=1&AskWhereToSaveDownloads=1";
    for (const Case& c : std::vector<Case> {
             { "MaxHistory=+250+", [](AppSettings& s) { s.maxHistory = 250; } },
             { "MaxHistory=%09+12%09", [](AppSettings& s) { s.maxHistory = 12; } },
             { "MaxHistory=abc", [](AppSettings&) {} },
             { "MaxHistory=", [](AppSettings&) {} },
             { "MaxHistory=+", [](AppSettings&) {} },
             { "MaxHistory=1+2", [](AppSettings&) {} },
             { "MaxHistory=%0A5", [](AppSettings&) {} }, // line breaks aren't trimmed
             { "MaxHistory=%2B-5", [](AppSettings&) {} },
             { "MaxHistory=0x10", [](AppSettings&) {} },
             { "MaxHistory=99999999999999999999", [](AppSettings&) {} },
             { "MaxHistory=999999", [](AppSettings& s) { s.maxHistory = 100000; } },
             { "MaxHistory=-5", [](AppSettings& s) { s.maxHistory = 0; } },
             { "MaxHistory=%2B7", [](AppSettings& s) { s.maxHistory = 7; } },
             { "TextColor=gunmetal", [](AppSettings&) {} },
             { "FieldColor=gunmetal", [](AppSettings& s) { s.fieldColor = "gunmetal"; } },
             { "BorderColor=white&HighlightColor=Red&PassiveColor=red",
                 [](AppSettings& s) {
                     s.borderColor = "white";
                     s.passiveColor = "red";
                 } },
             { "Homepage=", [](AppSettings& s) { s.homepage = ""; } },
             { "SearchTemplate=https%3A%2F%2Fs.example%2F%3Fq%3D%7Bq%7D&NewTabPage=velder%3A%2F%2Fdashboard%2F",
                 [](AppSettings& s) {
                     s.searchTemplate = "https://s.example/?q={q}";
                     s.newTabPage = "velder://dashboard/";
                 } },
         }) {
        SCOPED_TRACE(c.query);
        ScopedStores stores;
        stores.setSettings([](AppSettings& s) {
            s.maxHistory = 5000;
            s.restoreSession = true;
            s.askWhereToSaveDownloads = true;
        });
        AppSettings expected = stores.vault().snapshot()->settings;
        c.expect(expected);
        EXPECT_EQ(
            SettingsPage::save(FormValues(std::string("save=1&") + c.query + flags)), "velder://settings/?saved=1");
        EXPECT_EQ(stores.vault().snapshot()->settings, expected);
    }
}

TEST(SettingsPage, AbsentFlagsTurnOffWhileAbsentTextsStay)
{
    ScopedStores stores;
    stores.setSettings([](AppSettings& s) {
        s.restoreSession = true;
        s.locationEnabled = true;
        s.askWhereToSaveDownloads = true;
        s.homepage = "https://h.example/";
    });
    SettingsPage::save(FormValues("save=1&LocationEnabled=0"));
    auto settings = stores.vault().snapshot()->settings;
    EXPECT_FALSE(settings.restoreSession);
    EXPECT_TRUE(settings.locationEnabled) << "a present flag is on whatever its value";
    EXPECT_FALSE(settings.askWhereToSaveDownloads);
    EXPECT_EQ(settings.homepage, "https://h.example/");
}

TEST(SettingsPage, OnlyAColourChangePostsTheThemeNotification)
{
    ScopedStores stores;
    ThemeObserver observer;
    SettingsPage::save(FormValues("save=1&MaxHistory=10&TextColor=cyan"));
    EXPECT_EQ(observer.count, 0);
    SettingsPage::save(FormValues("save=1&BorderColor=black"));
    EXPECT_EQ(observer.count, 1);
    SettingsPage::save(FormValues("save=1&BorderColor=nonsense"));
    EXPECT_EQ(observer.count, 1);
}

TEST(SettingsPage, TheArchiveDecision)
{
    struct Case {
        const char* name;
        bool wasOn;
        bool archived; // a file in the archive
        const char* query;
        const char* redirect;
        bool nowOn;
        bool archiveRemains;
    };
    for (const Case& c : std::vector<Case> {
             { "unticking with archives asks", true, true, "save=1&MaxHistory=9", "velder://settings/?confirmarchive=1",
                 true, true },
             { "unticking with none turns off", true, false, "save=1&MaxHistory=9", "velder://settings/?saved=1", false,
                 false },
             { "keep leaves it on", true, true, "save=1&MaxHistory=9&Archive=keep", "velder://settings/?saved=1", true,
                 true },
             { "delete purges and turns off", true, true, "save=1&MaxHistory=9&Archive=delete&ArchiveOldVersions=1",
                 "velder://settings/?saved=1", false, false },
             { "ticked stays on", true, true, "save=1&MaxHistory=9&ArchiveOldVersions=1", "velder://settings/?saved=1",
                 true, true },
             { "off stays off", false, true, "save=1&MaxHistory=9", "velder://settings/?saved=1", false, true },
         }) {
        SCOPED_TRACE(c.name);
        ScopedStores stores;
        stores.setSettings([&](AppSettings& s) { s.archiveOldVersions = c.wasOn; });
        if (c.archived) {
            putInArchive("Velder-1.0.tar.xz", 2 * 1048576);
        }
        EXPECT_EQ(SettingsPage::save(FormValues(c.query)), c.redirect);
        EXPECT_EQ(stores.vault().snapshot()->settings.archiveOldVersions, c.nowOn);
        EXPECT_EQ(stores.vault().snapshot()->settings.maxHistory, 9) << "the other fields are stored in every case";
        EXPECT_EQ(fileExists(AppInfo::archiveDirectory() + "/Velder-1.0.tar.xz"), c.archiveRemains);
    }
}

TEST(SettingsPage, TickingArchivingCapturesTheStagedInstallerOnce)
{
    ScopedStores stores;
    stage("PersistentDownloads", "Velder-2.0.tar.xz", 1048577);
    LogCapture log;
    SettingsPage::save(FormValues("save=1&ArchiveOldVersions=1"));
    EXPECT_TRUE(fileExists(AppInfo::archiveDirectory() + "/Velder-2.0.tar.xz"));
    EXPECT_EQ(log.lines(), std::vector<std::string> { "Velder: archived Velder-2.0.tar.xz" });
    stage("PersistentDownloads", "Velder-2.1.tar.xz", 1048578);
    SettingsPage::save(FormValues("save=1&ArchiveOldVersions=1"));
    EXPECT_EQ(log.lines().size(), 1u) << "already on: nothing is captured";
}

TEST(SettingsPage, Maintenance)
{
    ScopedStores stores;
    ScopedPageHost host;
    stores.history().record("https://a.example/", "", velder::now());
    EXPECT_EQ(SettingsPage::performMaintenance(SettingsPage::MaintenanceAction::history, 3),
        "velder://settings/?done=history");
    EXPECT_EQ(stores.history().count(), 0u);
    EXPECT_EQ(SettingsPage::performMaintenance(SettingsPage::MaintenanceAction::browsingData, 3),
        "velder://settings/?done=browsingdata");
    EXPECT_EQ(SettingsPage::performMaintenance(SettingsPage::MaintenanceAction::browsingData, std::nullopt),
        "velder://settings/?done=browsingdata");
    EXPECT_EQ(SettingsPage::performMaintenance(SettingsPage::MaintenanceAction::location, std::nullopt),
        "velder://settings/?done=location");
    EXPECT_EQ(host.host->calls, (std::vector<std::string> { "clearCookiesAndCache 3", "forgetLocationAnswers" }))
        << "with no view that asked, no cookies are cleared";
}
