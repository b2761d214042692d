#pragma once

#include "core/SymmetricKey.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace velder {

// AES-256-GCM sealing in the combined form: a 12-byte random nonce, the ciphertext, a 16-byte tag,
// and nothing else (no additional authenticated data).
namespace AesGcm {

constexpr std::size_t nonceLength = 12;
constexpr std::size_t tagLength = 16;

std::optional<std::vector<std::uint8_t>> seal(
    const SymmetricKey& key, std::span<const std::uint8_t> plaintext, std::string* error = nullptr);

// The plaintext, as text. Fails for a box shorter than nonce plus tag, a wrong key, or any changed byte.
std::optional<std::vector<char>> open(
    const SymmetricKey& key, std::span<const std::uint8_t> combined, std::string* error = nullptr);

// Bytes from the system's secure random source.
bool randomBytes(std::span<std::uint8_t> out);

} // namespace AesGcm

} // namespace velder
