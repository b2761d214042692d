#pragma once

#include "core/KeychainKey.h"
#include "core/SymmetricKey.h"
#include "core/VldJson.h"

#include <atomic>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velder {

// The parts of a sealed file that don't depend on the record type.
class SealedFile {
public:
    SealedFile(std::string path, std::optional<SymmetricKey> key);

    const std::string& path() const { return m_path; }
    // "vault.bin": the name used in log lines.
    std::string fileName() const;

    // The opened plaintext, or nothing: quietly for a missing key or file, with the log line for a
    // short, tampered or wrong-key file.
    std::optional<std::vector<char>> readPlaintext() const;
    // Seals and writes atomically, then sets mode 0600. False, quietly, without a key; false with the
    // log line when sealing or writing fails (the old file then stays whole). A file this one couldn't read
    // is kept aside first (see KeepAside).
    bool writePlaintext(const std::string& json) const;
    void logUnreadable(const std::string& reason) const;
    // The size of the last text read or written, a good guess for the next one.
    std::size_t lastPlaintextSize() const { return m_lastPlaintextSize.load(); }

private:
    std::string m_path;
    std::optional<SymmetricKey> m_key;
    mutable std::atomic<std::size_t> m_lastPlaintextSize { 0 };
    // Set by a read that found the file unreadable: the next write keeps that file aside first.
    mutable std::atomic<bool> m_keepAsideBeforeWriting { false };
};

// One sealed JSON file of one record type. It keeps no cache: each load and save goes to the disk.
template<class Record> class SecureJsonFile {
public:
    explicit SecureJsonFile(std::string path, std::optional<SymmetricKey> key = KeychainKey::shared())
        : m_file(std::move(path), std::move(key))
    {
    }

    const std::string& path() const { return m_file.path(); }

    // Never fails: on any trouble it returns the defaults given.
    Record load(const Record& defaults) const
    {
        auto plaintext = m_file.readPlaintext();
        if (!plaintext) {
            return defaults;
        }
        try {
            return VldJson::decode<Record>(std::move(*plaintext), defaults);
        } catch (const JsonDecodeError& error) {
            m_file.logUnreadable(error.what());
            return defaults;
        }
    }

    bool save(const Record& record) const
    {
        std::string json = VldJson::encode(record, m_file.lastPlaintextSize() + m_file.lastPlaintextSize() / 8);
        return m_file.writePlaintext(json);
    }

private:
    SealedFile m_file;
};

} // namespace velder
