#include "core/DownloadName.h"
#include "bridge/VLDDownloadItem.h"
#include "support/TestSupport.h"

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
        { "control characters", "a\tb\nc.txt", "a_b_c.txt" },
        { "an invisible format character", "a\xE2\x80\x8Bz", "a_z" },
        { "a byte that isn't UTF-8", "a\xFFz", "a_z" },
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
        { "a stem is never cut to nothing", clef + "a." + std::string(198, 'e'), clef + "." + std::string(198, 'e') },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(VLDDownloadItem::sanitisedFilename(row.input), row.expected);
    }
}

// One numbering rule: before the last extension, up to 999; the reservation numbers on past any file,
// and a folder that can't be written gives no name at all.
TEST(DownloadNameTest, NamesNumberOnAndRunOut)
{
    struct Row {
        const char* name;
        std::string file;
        std::set<std::string> existing;
        std::optional<std::string> expected;
    };
    std::set<std::string> all;
    for (int n = 1; n <= 999; ++n) {
        all.insert("/d/" + DownloadName::numbered("a.txt", n));
    }
    std::set<std::string> allButLast = all;
    allButLast.erase("/d/a (999).txt");
    const Row rows[] = {
        { "free", "a.txt", {}, "/d/a.txt" },
        { "taken twice", "a.txt", { "/d/a.txt", "/d/a (2).txt" }, "/d/a (3).txt" },
        { "no extension", "notes", { "/d/notes" }, "/d/notes (2)" },
        { "a leading dot is no extension", ".bashrc", { "/d/.bashrc" }, "/d/.bashrc (2)" },
        { "the last dot makes the extension", "a.tar.gz", { "/d/a.tar.gz" }, "/d/a.tar (2).gz" },
        { "the last number", "a.txt", allButLast, "/d/a (999).txt" },
        { "none left", "a.txt", all, std::nullopt },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        auto free = [&](const std::string& path) { return row.existing.count(path) == 0; };
        EXPECT_EQ(DownloadName::first("/d", row.file, free), row.expected);
    }

    // A reserved name is taken at once (same-name downloads show it numbering on); a "folder" that is a file
    // can hold no name.
    TempDir folder;
    auto first = DownloadName::reserve(folder.path(), "r.pdf");
    ASSERT_EQ(first, folder.path() + "/r.pdf");
    EXPECT_EQ(DownloadName::reserve(*first, "r.pdf"), std::nullopt);
}

} // namespace velder::test
