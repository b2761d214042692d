#include "core/SecureJsonFile.h"

#include "core/AesGcm.h"
#include "core/FileIO.h"
#include "core/KeepAside.h"
#include "core/Log.h"

#include <filesystem>

namespace velder {

namespace fs = std::filesystem;

SealedFile::SealedFile(std::string path, std::optional<SymmetricKey> key)
    : m_path(std::move(path))
    , m_key(std::move(key))
{
}

std::string SealedFile::fileName() const
{
    auto slash = m_path.rfind('/');
    return slash == std::string::npos ? m_path : m_path.substr(slash + 1);
}

void SealedFile::logUnreadable(const std::string& reason) const
{
    log("Velder: " + fileName() + " could not be read (" + reason + "); starting fresh.");
    m_keepAsideBeforeWriting.store(true);
}

std::optional<std::vector<char>> SealedFile::readPlaintext() const
{
    if (!m_key) {
        return std::nullopt;
    }
    auto bytes = FileIO::readWhole(m_path);
    if (!bytes) {
        return std::nullopt;
    }
    std::string error;
    auto plaintext = AesGcm::open(*m_key, *bytes, &error);
    if (!plaintext) {
        logUnreadable(error);
        return std::nullopt;
    }
    m_lastPlaintextSize.store(plaintext->size());
    return plaintext;
}

bool SealedFile::writePlaintext(const std::string& json) const
{
    if (!m_key) {
        return false;
    }
    if (m_keepAsideBeforeWriting.exchange(false)) {
        if (auto aside = KeepAside::move(m_path, std::chrono::system_clock::now())) {
            log("Velder: " + fileName() + " could not be read; it is kept as " + fs::path(*aside).filename().string()
                + " before a new one is written.");
        }
    }
    std::string error;
    auto sealed
        = AesGcm::seal(*m_key, std::span(reinterpret_cast<const std::uint8_t*>(json.data()), json.size()), &error);
    if (!sealed || !FileIO::writeAtomically(m_path, *sealed, &error)) {
        log("Velder: " + fileName() + " could not be written (" + error + ").");
        return false;
    }
    m_lastPlaintextSize.store(json.size());
    FileIO::setMode(m_path, 0600); // a failure here neither logs nor changes the result
    return true;
}

} // namespace velder
