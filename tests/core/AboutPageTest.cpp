#include "core/AboutPage.h"

#include "core/AppInfo.h"
#include "core/Shortcuts.h"
#include "support/FakePageHost.h"
#include "support/ScopedStores.h"

#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;

TEST(AboutPage, KeyTexts)
{
    using namespace KeyModifier;
    struct Case {
        const char* key;
        std::uint32_t modifiers;
        const char* text;
    };
    for (const Case& c : std::vector<Case> {
             { "t", command, "Ctrl+T" },
             { "w", command | shift, "Ctrl+Shift+W" },
             { "+", command, "Ctrl++" },
             { "Tab", command | shift, "Ctrl+Shift+Tab" },
             { "Right", command | option, "Ctrl+Alt+\xE2\x86\x92" },
             { "Left", option, "Alt+\xE2\x86\x90" },
             { "Escape", 0, "Esc" },
             { "Page_Down", command, "Ctrl+Page Down" },
             { "Page_Up", command, "Ctrl+Page Up" },
             { "Home", option, "Alt+Home" },
             { "F3", shift, "Shift+F3" },
             { "F12", 0, "F12" },
             { "[", command, "Ctrl+[" },
             { ",", command, "Ctrl+," },
         }) {
        SCOPED_TRACE(c.key);
        EXPECT_EQ(AboutPage::glyphs(KeyBinding { BrowserAction::Kind::find, c.key, c.modifiers, 0, false }), c.text);
    }
}

TEST(AboutPage, KeyboardTableFollowsTheKeyTable)
{
    std::string section = AboutPage::keyboardSection();
    ASSERT_TRUE(section.starts_with("<h2>Keyboard</h2>\n<table><thead><tr><th>Action</th><th "
                                    "class=\"num\">Keys</th></tr></thead><tbody>"));
    ASSERT_TRUE(section.ends_with("</tbody></table>"));
    // Rows in order of first appearance, each with its keys joined.
    std::vector<std::string> rows;
    for (size_t at = section.find("<tr><td>"); at != std::string::npos; at = section.find("<tr><td>", at + 1)) {
        size_t end = section.find("</tr>", at);
        rows.push_back(section.substr(at, end + 5 - at));
    }
    auto row = [](const char* label, const char* keys) {
        return std::string("<tr><td>") + label + "</td><td class=\"num\">" + keys + "</td></tr>";
    };
    ASSERT_EQ(rows.size(), 26u);
    EXPECT_EQ(rows[0], row("New tab", "Ctrl+T"));
    EXPECT_EQ(rows[4], row("Next tab", "Ctrl+Tab, Ctrl+Alt+\xE2\x86\x92, Ctrl+Page Down"));
    EXPECT_EQ(rows[5], row("Previous tab", "Ctrl+Shift+Tab, Ctrl+Alt+\xE2\x86\x90, Ctrl+Page Up"));
    EXPECT_EQ(rows[9], row("Focus address bar", "Ctrl+L, F6, Alt+D"));
    EXPECT_EQ(rows[13], row("Reload", "Ctrl+R, F5"));
    EXPECT_EQ(rows[14], row("Reload, ignoring cache", "Ctrl+Shift+R, Ctrl+F5"));
    EXPECT_EQ(rows[15], row("Stop", "Ctrl+., Esc"));
    EXPECT_EQ(rows[16], row("Back", "Ctrl+[, Ctrl+\xE2\x86\x90, Alt+\xE2\x86\x90"));
    EXPECT_EQ(rows[18], row("Home", "Ctrl+Shift+H, Alt+Home"));
    EXPECT_EQ(rows[19], row("Zoom in", "Ctrl++, Ctrl+="));
    EXPECT_EQ(rows[22], row("Developer tools", "Ctrl+Alt+I, F12, Ctrl+Shift+I"));
    EXPECT_EQ(rows[23], row("History", "Ctrl+Y, Ctrl+H"));
    EXPECT_EQ(rows[24], row("Settings", "Ctrl+,"));
    EXPECT_EQ(rows[25],
        row("Select tab by position",
            "Ctrl+1\xE2\x80\xA6"
            "Ctrl+8"));
    EXPECT_EQ(section.find("Select tab by position"), section.rfind("Select tab by position"));
}

TEST(AboutPage, Render)
{
    ScopedStores stores;
    ScopedPageHost host;
    std::string page = AboutPage::render();
    EXPECT_NE(page.find("<title>About Velder</title>"), std::string::npos);
    EXPECT_NE(page.find("<h1>About Velder</h1>"), std::string::npos);
    EXPECT_NE(page.find("<span>About</span>"), std::string::npos);
    std::string version = AboutPage::rows(
        "Version", { { "Velder", AppInfo::version() }, { "WebKitGTK", "2.50.6" }, { "GTK", "4.8.3" } });
    EXPECT_EQ(version,
        "<h2>Version</h2><dl class=\"kv\"><dt>Velder</dt><dd>" + AppInfo::version()
            + "</dd><dt>WebKitGTK</dt><dd>2.50.6</dd><dt>GTK</dt><dd>4.8.3</dd></dl>");
    std::string data = AboutPage::rows("Data",
        { { "Profile", AppInfo::dataDirectory() }, { "Settings", AppInfo::vaultFile() },
            { "History", AppInfo::historyFile() }, { "Engine profile", AppInfo::engineDirectory() },
            { "Log", AppInfo::engineLogFile() }, { "Archived installers", AppInfo::archiveDirectory() } });
    EXPECT_NE(
        page.find("</header>" + version + data + AboutPage::keyboardSection() + "</div></body>"), std::string::npos);
    EXPECT_NE(data.find("<dt>Archived installers</dt><dd>" + stores.profile().root().path() + "/cache/Velder/archive"),
        std::string::npos);
    EXPECT_EQ(AboutPage::rows("<H>", { { "a&b", "<v>" } }),
        "<h2>&lt;H&gt;</h2><dl class=\"kv\"><dt>a&amp;b</dt><dd>&lt;v&gt;</dd></dl>");
}
