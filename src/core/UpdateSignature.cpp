#include "core/UpdateSignature.h"

#include "core/Text.h"

#include <glib.h>
#include <openssl/evp.h>
#include <vector>

namespace velder::UpdateSignature {

namespace {

// Strict base64 of exactly `size` bytes; GLib's decoder skips what isn't base64, so the text is checked first.
std::optional<std::vector<std::uint8_t>> decode(std::string_view text, std::size_t size)
{
    text = Text::trimmed(text);
    if (text.empty() || text.size() % 4 != 0) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        bool padding = c == '=' && i + 2 >= text.size();
        if (!g_ascii_isalnum(c) && c != '+' && c != '/' && !padding) {
            return std::nullopt;
        }
    }
    std::string copy(text);
    gsize length = 0;
    guchar* decoded = g_base64_decode(copy.c_str(), &length);
    std::vector<std::uint8_t> bytes(decoded, decoded + length);
    g_free(decoded);
    if (bytes.size() != size) {
        return std::nullopt;
    }
    return bytes;
}

} // namespace

std::optional<std::string> refusal(
    std::span<const std::uint8_t> bytes, const std::string& signature, const std::string& publicKey)
{
    if (Text::trimmed(signature).empty()) {
        return "the update is not signed";
    }
    auto signatureBytes = decode(signature, 64);
    if (!signatureBytes) {
        return "the update's signature is malformed";
    }
    auto keyBytes = decode(publicKey, 32);
    if (!keyBytes) {
        return "this build's public key is malformed";
    }
    EVP_PKEY* key = EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, keyBytes->data(), keyBytes->size());
    if (!key) {
        return "this build's public key is malformed";
    }
    EVP_MD_CTX* context = EVP_MD_CTX_new();
    bool valid = context && EVP_DigestVerifyInit(context, nullptr, nullptr, nullptr, key) == 1
        && EVP_DigestVerify(context, signatureBytes->data(), signatureBytes->size(), bytes.data(), bytes.size()) == 1;
    EVP_MD_CTX_free(context);
    EVP_PKEY_free(key);
    if (!valid) {
        return "the update's signature does not match this build's key";
    }
    return std::nullopt;
}

} // namespace velder::UpdateSignature
