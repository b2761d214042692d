#pragma once

#include "core/SymmetricKey.h"

#include <optional>
#include <string>

namespace velder {

// The one key of the three sealed files: 32 raw bytes in "vault.key" (mode 0600) in the data folder.
// Despite the name no system key store is involved; the key is a plain file.
namespace KeychainKey {

// Computed once per process, thread-safely, from AppInfo::keyFile(). Absent means that this launch
// can neither read nor write a sealed file.
const std::optional<SymmetricKey>& shared();

// The algorithm behind shared(), on a given file: read it; a file of exactly 32 bytes is the key;
// any other length is logged and replaced, as is a missing file (silently); a key that can't be
// written leaves this launch without one.
std::optional<SymmetricKey> loadOrCreate(const std::string& path);

} // namespace KeychainKey

} // namespace velder
