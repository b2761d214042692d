#include "core/SecureJsonFile.h"
#include "core/AesGcm.h"
#include "core/KeepAside.h"
#include "core/KeychainKey.h"
#include "core/Log.h"
#include "core/VaultData.h"
#include "support/TestSupport.h"

#include "CoreTestSupport.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace velder;
using namespace velder::test;

namespace {

unsigned modeOf(const std::string& path)
{
    struct stat info { };
    stat(path.c_str(), &info);
    return info.st_mode & 0777;
}

VaultData sampleVault(const std::string& homepage)
{
    VaultData data;
    data.settings.homepage = homepage;
    return data;
}

} // namespace

TEST(KeychainKey, FirstLaunchCreatesAKeyQuietly)
{
    TempDir dir;
    LogCapture log;
    auto key = KeychainKey::loadOrCreate(dir.file("vault.key"));
    ASSERT_TRUE(key);
    EXPECT_EQ(readBytes(dir.file("vault.key")), std::vector<std::uint8_t>(key->begin(), key->end()));
    EXPECT_EQ(modeOf(dir.file("vault.key")), 0600u);
    // A missing data file is a first launch too: defaults, and no line.
    EXPECT_EQ(SecureJsonFile<VaultData>(dir.file("vault.bin"), key).load(sampleVault("d")), sampleVault("d"));
    EXPECT_TRUE(log.lines().empty());
    EXPECT_EQ(KeychainKey::loadOrCreate(dir.file("vault.key")), key) << "a second launch reads the same key";
}

// The files a directory holds whose names begin with `prefix`, with their bytes.
std::map<std::string, std::vector<std::uint8_t>> filesStartingWith(const TempDir& dir, const std::string& prefix)
{
    std::map<std::string, std::vector<std::uint8_t>> found;
    for (const auto& entry : std::filesystem::directory_iterator(dir.path())) {
        if (entry.path().filename().string().starts_with(prefix)) {
            found[entry.path().filename().string()] = readBytes(entry.path().string());
        }
    }
    return found;
}

// A key of the wrong length is replaced, and the files it sealed start fresh; but nothing is destroyed: the
// old key is kept aside at once, an unreadable file before the first save that would replace it.
TEST(KeychainKey, AKeyOfTheWrongLengthIsReplacedAndOldFilesStartFresh)
{
    for (std::size_t length : { 31u, 33u, 0u }) {
        SCOPED_TRACE(length);
        TempDir dir;
        auto oldKey = KeychainKey::loadOrCreate(dir.file("vault.key"));
        SecureJsonFile<VaultData>(dir.file("vault.bin"), oldKey).save(sampleVault("https://old.example/"));
        auto sealed = readBytes(dir.file("vault.bin"));
        writeBytes(dir.file("vault.key"), std::vector<std::uint8_t>(length, 7));

        LogCapture log;
        auto newKey = KeychainKey::loadOrCreate(dir.file("vault.key"));
        ASSERT_TRUE(newKey);
        EXPECT_NE(newKey, oldKey);
        EXPECT_EQ(readBytes(dir.file("vault.key")).size(), 32u);
        SecureJsonFile<VaultData> file(dir.file("vault.bin"), newKey);
        VaultData loaded = file.load(VaultData());
        EXPECT_EQ(loaded, VaultData());

        EXPECT_EQ(log.lines().at(0),
            "Velder: vault.key is " + std::to_string(length) + " bytes, expected 32; generating a new one.");
        EXPECT_EQ(log.linesStartingWith("Velder: vault.bin could not be read (").size(), 1u);
        EXPECT_EQ(log.lines().size(), 3u);
        EXPECT_EQ(readBytes(dir.file("vault.bin")), sealed) << "the unreadable file stays until the next save";
        auto keys = filesStartingWith(dir, "vault.key.unreadable-");
        ASSERT_EQ(keys.size(), 1u);
        EXPECT_EQ(keys.begin()->second, std::vector<std::uint8_t>(length, 7));

        ASSERT_TRUE(file.save(sampleVault("https://new.example/")));
        auto vaults = filesStartingWith(dir, "vault.bin.unreadable-");
        ASSERT_EQ(vaults.size(), 1u);
        EXPECT_EQ(vaults.begin()->second, sealed) << "kept with its bytes intact";
        EXPECT_EQ(std::filesystem::status(dir.file(vaults.begin()->first)).permissions() & std::filesystem::perms::all,
            std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
        EXPECT_EQ(
            log.linesStartingWith("Velder: vault.bin could not be read; it is kept as vault.bin.unreadable-").size(),
            1u);
    }
}

// At most three are kept for a file, the oldest going first; a second in the same second is numbered.
TEST(KeepAside, KeepsTheThreeNewest)
{
    TempDir dir;
    auto at
        = [](int seconds) { return std::chrono::system_clock::time_point(std::chrono::seconds(1764000000 + seconds)); };
    std::vector<std::string> asides;
    for (int i = 0; i < 5; ++i) {
        writeBytes(dir.file("history.bin"), { static_cast<std::uint8_t>(i) });
        auto aside = KeepAside::move(dir.file("history.bin"), at(i < 4 ? i : 3));
        ASSERT_TRUE(aside);
        asides.push_back(*aside);
    }
    EXPECT_EQ(asides[4], asides[3] + "-2");
    auto kept = filesStartingWith(dir, "history.bin.unreadable-");
    ASSERT_EQ(kept.size(), 3u);
    EXPECT_EQ(kept.begin()->second, std::vector<std::uint8_t> { 2 }) << "the two oldest are gone";
    EXPECT_FALSE(fileExists(dir.file("history.bin")));
    EXPECT_EQ(KeepAside::move(dir.file("history.bin"), at(9)), std::nullopt) << "nothing to keep";
}

TEST(KeychainKey, AKeyThatCannotBeStoredLeavesTheLaunchWithoutPersistence)
{
    TempDir dir;
    writeBytes(dir.file("not-a-folder"), { 1 });
    LogCapture log;
    auto key = KeychainKey::loadOrCreate(dir.file("not-a-folder/vault.key"));
    EXPECT_FALSE(key);
    expectOneLine(log, "could not write vault.key (\xE2\x80\xA6); this launch will not persist.");

    // Without a key every file is quietly left alone: defaults in, false out, nothing written.
    SecureJsonFile<VaultData> file(dir.file("vault.bin"), std::nullopt);
    writeBytes(dir.file("vault.bin"), { 1, 2, 3 });
    EXPECT_EQ(file.load(sampleVault("x")), sampleVault("x"));
    EXPECT_FALSE(file.save(sampleVault("y")));
    EXPECT_EQ(readBytes(dir.file("vault.bin")), (std::vector<std::uint8_t> { 1, 2, 3 }));
    EXPECT_EQ(log.lines().size(), 1u);
}

TEST(SecureJsonFile, SavedFilesAreSealedWithAFreshNonceAndMode0600)
{
    TempDir dir;
    SymmetricKey key = testDataKey();
    SecureJsonFile<VaultData> file(dir.file("vault.bin"), key);
    ASSERT_TRUE(file.save(sampleVault("https://a.example/")));
    auto first = readBytes(dir.file("vault.bin"));
    EXPECT_EQ(modeOf(dir.file("vault.bin")), 0600u);
    ASSERT_TRUE(file.save(sampleVault("https://a.example/")));
    auto second = readBytes(dir.file("vault.bin"));
    EXPECT_NE(first, second) << "the nonce differs on every save";
    EXPECT_EQ(first.size(), second.size());

    // The file is the nonce, the ciphertext of the JSON text and the tag, and nothing else.
    auto plaintext = AesGcm::open(key, second);
    ASSERT_TRUE(plaintext);
    EXPECT_EQ(std::string(plaintext->begin(), plaintext->end()), VldJson::encode(sampleVault("https://a.example/")));
    EXPECT_EQ(second.size(), 12 + plaintext->size() + 16);
    EXPECT_FALSE(fileExists(dir.file("vault.bin.tmp")));
}

TEST(SecureJsonFile, AFailedWriteLogsAndKeepsTheOldFileWhole)
{
    TempDir dir;
    SymmetricKey key = testDataKey();
    SecureJsonFile<VaultData> file(dir.file("vault.bin"), key);
    ASSERT_TRUE(file.save(sampleVault("https://old.example/")));
    auto old = readBytes(dir.file("vault.bin"));

    // A file size limit below the new file makes the write fail half-way.
    signal(SIGXFSZ, SIG_IGN);
    rlimit saved {};
    getrlimit(RLIMIT_FSIZE, &saved);
    rlimit limited = saved;
    limited.rlim_cur = 64;
    setrlimit(RLIMIT_FSIZE, &limited);
    LogCapture log;
    bool saved_ok = file.save(sampleVault(std::string(4096, 'x')));
    setrlimit(RLIMIT_FSIZE, &saved);

    EXPECT_FALSE(saved_ok);
    expectOneLine(log, "vault.bin could not be written (\xE2\x80\xA6).");
    EXPECT_EQ(readBytes(dir.file("vault.bin")), old);
    EXPECT_EQ(file.load(VaultData()).settings.homepage, "https://old.example/");
}

// The writer is killed inside the write of the new file: its side file is a FIFO here, so the test reads
// the sealed bytes as far as it likes while the writer is blocked in write(), and kills it there.
TEST(SecureJsonFile, AWriterKilledMidWriteLeavesTheOldFileWhole)
{
    TempDir dir;
    SymmetricKey key = testDataKey();
    std::string path = dir.file("vault.bin");
    std::string side = path + ".tmp";
    ASSERT_TRUE(SecureJsonFile<VaultData>(path, key).save(sampleVault("https://old.example/")));
    const auto old = readBytes(path);
    const VaultData next = sampleVault(std::string(1 << 20, 'n'));
    const std::size_t sealedSize = 12 + VldJson::encode(next).size() + 16;

    // A pipe holds this much: as long as more than that is still to come, the writer is inside write().
    int probe[2];
    ASSERT_EQ(pipe(probe), 0);
    const auto pipeSize = static_cast<std::size_t>(fcntl(probe[0], F_GETPIPE_SZ));
    close(probe[0]);
    close(probe[1]);

    for (std::size_t wanted : { std::size_t(1), sealedSize / 2, sealedSize - pipeSize - 1 }) {
        SCOPED_TRACE(wanted);
        ASSERT_EQ(mkfifo(side.c_str(), 0600), 0);
        int fifo = open(side.c_str(), O_RDONLY | O_NONBLOCK);
        ASSERT_GE(fifo, 0);
        pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            SecureJsonFile<VaultData>(path, key).save(next);
            _exit(0);
        }
        std::size_t got = 0;
        std::vector<char> buffer(65536);
        pollfd readable { fifo, POLLIN, 0 };
        // Bounded, so that a writer that never opens the side file fails the test instead of hanging it.
        while (got < wanted && poll(&readable, 1, 10000) == 1) {
            ssize_t n = read(fifo, buffer.data(), std::min(buffer.size(), wanted - got));
            if (n == 0 || (n < 0 && errno != EAGAIN)) {
                break;
            }
            got += n > 0 ? static_cast<std::size_t>(n) : 0;
        }
        EXPECT_EQ(got, wanted);
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        close(fifo);
        unlink(side.c_str());
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << "the writer was still writing";

        LogCapture log;
        EXPECT_EQ(readBytes(path), old);
        EXPECT_EQ(SecureJsonFile<VaultData>(path, key).load(VaultData()).settings.homepage, "https://old.example/");
        EXPECT_TRUE(log.lines().empty());
    }

    // What a killed writer leaves beside the file is replaced by the next save.
    writeBytes(side, std::vector<std::uint8_t>(100, 7));
    ASSERT_TRUE(SecureJsonFile<VaultData>(path, key).save(next));
    EXPECT_EQ(SecureJsonFile<VaultData>(path, key).load(VaultData()), next);
    EXPECT_FALSE(fileExists(side));
}
