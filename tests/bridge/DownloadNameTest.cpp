#include "bridge/VLDDownloadItem.h"
#include "bridge/VLDDownloadPath.h"

#include <gtest/gtest.h>
#include <set>

namespace velder::test {

TEST(DownloadNameTest, SanitisedFilenames)
{
    struct Row {
        const char* name;
        std::string input;
        std::string expected;
    };
    std::string letters300(300, 'a');
    std::string letters200(200, 'a');
    // A character outside the Basic Multilingual Plane counts as two units.
    std::string clef = "\xF0\x9D\x84\x9E";
    const Row rows[] = {
        { "empty", "", "download" },
        { "plain", "report.pdf", "report.pdf" },
        { "slash, colon and backslash", "a/b:c\\d.txt", "a_b_c_d.txt" },
        { "each one an underscore", "//", "__" },
        { "control characters", "a\tb\nc.txt", "a_b_c.txt" },
        { "an invisible format character",
            "a\xE2\x80\x8B"
            "b",
            "a_b" },
        { "a byte that isn't UTF-8",
            "a\xFF"
            "b",
            "a_b" },
        { "blanks at the ends", "  name.txt \xE2\x80\x83", "name.txt" },
        { "leading dots", "...hidden", "hidden" },
        { "blanks then dots", "  ..x", "x" },
        { "a blank behind a leading dot stays", ". x", " x" },
        { "dots alone", "...", "download" },
        { "blanks alone", "   ", "download" },
        { "300 letters and an extension", letters300 + ".txt", std::string(196, 'a') + ".txt" },
        { "300 letters", letters300, letters200 },
        { "exactly 200", letters200, letters200 },
        { "an extension that leaves no stem room", "a." + std::string(199, 'e'), "a." + std::string(199, 'e') },
        { "a pair is never split", std::string(198, 'a') + clef + clef + ".t", std::string(198, 'a') + ".t" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(VLDDownloadItem::sanitisedFilename(row.input), row.expected);
    }
}

TEST(DownloadNameTest, DefaultPathsAreMadeUnique)
{
    struct Row {
        const char* name;
        std::string file;
        std::set<std::string> existing;
        std::string expected;
    };
    const Row rows[] = {
        { "taken twice", "a.txt", { "/d/a.txt", "/d/a (2).txt" }, "/d/a (3).txt" },
        { "no extension", "notes", { "/d/notes" }, "/d/notes (2)" },
        { "the last dot makes the extension", "a.tar.gz", { "/d/a.tar.gz" }, "/d/a.tar (2).gz" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        auto exists = [&](const std::string& path) { return row.existing.count(path) > 0; };
        EXPECT_EQ(VLDDownloadPath::uniquePath("/d", row.file, exists), row.expected);
    }
    auto allTaken = [](const std::string&) { return true; };
    EXPECT_EQ(VLDDownloadPath::uniquePath("/d", "a.txt", allTaken), "/d/a (999).txt");
}

} // namespace velder::test
