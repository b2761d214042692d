#include "core/AboutPage.h"

#include "core/AppInfo.h"
#include "core/Shortcuts.h"
#include "support/FakePageHost.h"
#include "support/ScopedStores.h"

#include "CoreTestSupport.h"

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
             { "Right", command | option, "Ctrl+Alt+\xE2\x86\x92" },
             { "F3", shift, "Shift+F3" },
             { ",", command, "Ctrl+," },
         }) {
        SCOPED_TRACE(c.key);
        EXPECT_EQ(AboutPage::glyphs(KeyBinding { BrowserAction::Kind::find, c.key, c.modifiers, 0, false }), c.text);
    }
}

// The keyboard table is made from the key table: one row per action, holding every key of that action.
TEST(AboutPage, TheKeyboardTableListsEveryKey)
{
    std::string section = AboutPage::keyboardSection();
    auto rowOf = [&](BrowserAction action) {
        std::string start = "<tr><td>" + std::string(AboutPage::label(action)) + "</td>";
        size_t at = section.find(start);
        EXPECT_EQ(at, section.rfind(start)) << start << " appears once";
        return at == std::string::npos ? std::string() : section.substr(at, section.find("</tr>", at) - at);
    };
    for (const auto& binding : Shortcuts::bindings()) {
        SCOPED_TRACE(binding.key);
        std::string row = rowOf(binding.action);
        if (binding.action.kind == BrowserAction::Kind::selectTab) {
            EXPECT_TRUE(row.ends_with("<td class=\"num\">Ctrl+1\xE2\x80\xA6"
                                      "Ctrl+8</td>"))
                << row;
        } else {
            EXPECT_NE(row.find(AboutPage::glyphs(binding)), std::string::npos) << row;
        }
    }
    EXPECT_EQ(rowOf(Shortcuts::bindings()[0].action), "<tr><td>New tab</td><td class=\"num\">Ctrl+T</td>");
    EXPECT_NE(rowOf(BrowserAction::Kind::stop).find("Ctrl+., Esc"), std::string::npos) << "keys joined in table order";
}

TEST(AboutPage, RenderShowsVersionsAndFoldersEscaped)
{
    ScopedStores stores;
    ScopedPageHost host;
    expectParts(AboutPage::render(),
        { "<h1>About Velder</h1>", "<dt>Velder</dt><dd>" + AppInfo::version() + "</dd>",
            "<dt>WebKitGTK</dt><dd>2.50.6</dd><dt>GTK</dt><dd>4.8.3</dd>",
            "<dt>Archived installers</dt><dd>" + stores.profile().root().path() + "/cache/Velder/archive",
            AboutPage::keyboardSection() });
    EXPECT_EQ(AboutPage::rows("<H>", { { "a&b", "<v>" } }),
        "<h2>&lt;H&gt;</h2><dl class=\"kv\"><dt>a&amp;b</dt><dd>&lt;v&gt;</dd></dl>");
}
