#include "core/KeychainKey.h"

#include "core/AesGcm.h"
#include "core/AppInfo.h"
#include "core/FileIO.h"
#include "core/Format.h"
#include "core/KeepAside.h"
#include "core/Log.h"

#include <algorithm>
#include <filesystem>

namespace velder::KeychainKey {

std::optional<SymmetricKey> loadOrCreate(const std::string& path)
{
    if (auto bytes = FileIO::readWhole(path)) {
        if (bytes->size() == SymmetricKey().size()) {
            SymmetricKey key;
            std::copy(bytes->begin(), bytes->end(), key.begin());
            return key;
        }
        log(format(
            "Velder: vault.key is %d bytes, expected 32; generating a new one.", static_cast<int>(bytes->size())));
        if (auto aside = KeepAside::move(path, std::chrono::system_clock::now())) {
            log("Velder: the old vault.key is kept as " + std::filesystem::path(*aside).filename().string() + ".");
        }
    }

    SymmetricKey key;
    std::string error;
    if (!AesGcm::randomBytes(key)) {
        error = "no random bytes could be drawn";
    } else if (FileIO::writeAtomically(path, key, &error)) {
        if (FileIO::setMode(path, 0600)) {
            return key;
        }
        error = path + ": its mode could not be set to 0600";
    }
    log("Velder: could not write vault.key (" + error + "); this launch will not persist.");
    return std::nullopt;
}

const std::optional<SymmetricKey>& shared()
{
    static const std::optional<SymmetricKey> key = loadOrCreate(AppInfo::keyFile());
    return key;
}

} // namespace velder::KeychainKey
