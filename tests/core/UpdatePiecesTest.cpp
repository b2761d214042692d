#include "core/Appcast.h"
#include "core/ArchiveEntryRule.h"
#include "core/InstallSwap.h"
#include "core/UpdateSignature.h"
#include "support/TestSigner.h"
#include "support/TestSupport.h"

#include <filesystem>
#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;

TEST(Appcast, ReadsItemsAndTakesTheNewestAboveTheRunningVersion)
{
    auto items = Appcast::parse(R"(<?xml version="1.0"?>
<rss xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle"><channel><title>Velder</title>
<item><sparkle:version>9</sparkle:version><sparkle:shortVersionString> 0.9 </sparkle:shortVersionString>
  <enclosure url="https://h/v-0.9.tar.xz" length="12" sparkle:edSignature="c2ln"/></item>
<item><enclosure url="https://h/v-0.10.tar.xz" sparkle:version="10" sparkle:shortVersionString="0.10" length="x"/></item>
<item><title>no enclosure</title><sparkle:version>99</sparkle:version></item>
</channel></rss>)");
    ASSERT_TRUE(items);
    ASSERT_EQ(items->size(), 2u);
    EXPECT_EQ((*items)[0], (AppcastItem { "9", "0.9", "https://h/v-0.9.tar.xz", 12, "c2ln" }));
    EXPECT_EQ((*items)[1], (AppcastItem { "10", "0.10", "https://h/v-0.10.tar.xz", std::nullopt, "" }));
    EXPECT_EQ(Appcast::newestAbove(*items, "0.9.1")->version, "10") << "0.10 is above 0.9";
    EXPECT_EQ(Appcast::newestAbove(*items, "0.10"), std::nullopt);

    std::string error;
    EXPECT_EQ(Appcast::parse("<rss><item></rss>", &error), std::nullopt);
    EXPECT_FALSE(error.empty());

    const std::tuple<const char*, const char*, int> versions[]
        = { { "1.10", "1.9", 1 }, { "1.0", "1", 0 }, { "0.1.0", "0.1.1", -1 }, { "2b", "2", 0 }, { "", "0.0", 0 } };
    for (auto [a, b, expected] : versions) {
        EXPECT_EQ(Appcast::compareVersions(a, b), expected) << a << " vs " << b;
    }
}

// A tampered archive, another key's signature and none at all are refused through the updater itself
// (VelderUpdaterTest); here, a blank signature and the signatures and keys that cannot even be read.
TEST(UpdateSignature, OnlyAWellFormedSignatureOfTheseBytesPasses)
{
    TestSigner publisher;
    std::vector<std::uint8_t> bytes { 'v', 'e', 'l', 'd', 'e', 'r' };
    std::string signature = publisher.sign(bytes);
    struct Row {
        const char* name;
        std::string signature;
        std::string key;
        const char* refusal; // null: accepted
    };
    const Row rows[] = {
        { "signed", signature, publisher.publicKey(), nullptr },
        { "blank", " ", publisher.publicKey(), "the update is not signed" },
        { "not base64", signature.substr(1) + "!", publisher.publicKey(), "the update's signature is malformed" },
        { "short", "c2ln", publisher.publicKey(), "the update's signature is malformed" },
        { "bad key", signature, "a2V5", "this build's public key is malformed" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        auto refusal = UpdateSignature::refusal(bytes, row.signature, row.key);
        EXPECT_EQ(refusal, row.refusal ? std::optional<std::string>(row.refusal) : std::nullopt);
    }
}

TEST(ArchiveEntryRule, EntriesStayInsideTheFolder)
{
    using Kind = ArchiveEntryRule::Kind;
    const std::tuple<const char*, Kind, const char*, bool> rows[] = {
        { "./bin/velder", Kind::plain, "", true },
        { "share/../bin/velder", Kind::plain, "", true },
        { "/etc/passwd", Kind::plain, "", false },
        { "../velder", Kind::plain, "", false },
        { "bin/../../velder", Kind::plain, "", false },
        { "lib/libv.so", Kind::symbolicLink, "libv.so.1", true },
        { "lib/up", Kind::symbolicLink, "../bin/velder", true },
        { "lib/out", Kind::symbolicLink, "../../etc", false },
        { "lib/abs", Kind::symbolicLink, "/etc/passwd", false },
        { "bin/hard", Kind::hardLink, "bin/velder", true },
        { "bin/hard", Kind::hardLink, "../outside", false },
    };
    for (auto [path, kind, target, allowed] : rows) {
        EXPECT_EQ(!ArchiveEntryRule::refusal(path, kind, target), allowed) << path << " -> " << target;
    }
}

TEST(InstallSwap, TheUpdateTakesTheRootsPlaceAndTheOldTreeWaitsBeside)
{
    TempDir dir;
    std::string root = dir.file("velder");
    std::string staged = dir.file("staged");
    std::filesystem::create_directories(root + "/bin");
    writeBytes(root + "/bin/velder", { '1' });
    std::filesystem::create_directories(staged);
    EXPECT_TRUE(InstallSwap::swap(root, staged)) << "an update without bin/velder is refused";
    EXPECT_EQ(readBytes(root + "/bin/velder"), std::vector<std::uint8_t> { '1' });

    std::filesystem::create_directories(staged + "/bin");
    writeBytes(staged + "/bin/velder", { '2' });
    std::filesystem::create_symlink("velder", staged + "/bin/link");
    EXPECT_EQ(InstallSwap::swap(root, staged), std::nullopt);
    EXPECT_EQ(readBytes(root + "/bin/velder"), std::vector<std::uint8_t> { '2' });
    EXPECT_TRUE(std::filesystem::is_symlink(root + "/bin/link"));
    EXPECT_EQ(readBytes(InstallSwap::previousOf(root) + "/bin/velder"), std::vector<std::uint8_t> { '1' });
    EXPECT_FALSE(std::filesystem::exists(root + ".incoming"));
    InstallSwap::removePrevious(root);
    EXPECT_FALSE(std::filesystem::exists(InstallSwap::previousOf(root)));
}
