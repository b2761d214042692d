#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace velder {

// The Ed25519 check of a downloaded update: the publisher signs the archive's bytes with the private key,
// the installation's velder-info.json carries the public one.
namespace UpdateSignature {

// Nothing when `signature` (base64, 64 bytes) is the signature of `bytes` by `publicKey` (base64, 32 bytes);
// else why not: a missing or malformed signature, a malformed key, or a signature that doesn't match.
std::optional<std::string> refusal(
    std::span<const std::uint8_t> bytes, const std::string& signature, const std::string& publicKey);

} // namespace UpdateSignature

} // namespace velder
