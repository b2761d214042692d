#include "core/AesGcm.h"

#include <algorithm>
#include <memory>
#include <openssl/evp.h>
#include <openssl/rand.h>

namespace velder::AesGcm {

namespace {

struct ContextDeleter {
    void operator()(EVP_CIPHER_CTX* context) const { EVP_CIPHER_CTX_free(context); }
};
using Context = std::unique_ptr<EVP_CIPHER_CTX, ContextDeleter>;

bool fail(std::string* error, const char* text)
{
    if (error) {
        *error = text;
    }
    return false;
}

} // namespace

bool randomBytes(std::span<std::uint8_t> out)
{
    return RAND_bytes(out.data(), static_cast<int>(out.size())) == 1;
}

std::optional<std::vector<std::uint8_t>> seal(
    const SymmetricKey& key, std::span<const std::uint8_t> plaintext, std::string* error)
{
    std::vector<std::uint8_t> box(nonceLength + plaintext.size() + tagLength);
    if (!randomBytes(std::span(box.data(), nonceLength))) {
        fail(error, "no random nonce could be drawn");
        return std::nullopt;
    }
    Context context(EVP_CIPHER_CTX_new());
    int length = 0;
    if (!context || EVP_EncryptInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, nullptr, nullptr) != 1
        || EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_IVLEN, nonceLength, nullptr) != 1
        || EVP_EncryptInit_ex(context.get(), nullptr, nullptr, key.data(), box.data()) != 1
        || EVP_EncryptUpdate(
               context.get(), box.data() + nonceLength, &length, plaintext.data(), static_cast<int>(plaintext.size()))
            != 1
        || EVP_EncryptFinal_ex(context.get(), box.data() + nonceLength + length, &length) != 1
        || EVP_CIPHER_CTX_ctrl(
               context.get(), EVP_CTRL_GCM_GET_TAG, tagLength, box.data() + nonceLength + plaintext.size())
            != 1) {
        fail(error, "AES-GCM sealing failed");
        return std::nullopt;
    }
    return box;
}

std::optional<std::vector<char>> open(
    const SymmetricKey& key, std::span<const std::uint8_t> combined, std::string* error)
{
    if (combined.size() < nonceLength + tagLength) {
        fail(error, "the file is shorter than a nonce and a tag");
        return std::nullopt;
    }
    std::size_t cipherLength = combined.size() - nonceLength - tagLength;
    std::vector<char> plaintext(cipherLength);
    auto* out = reinterpret_cast<std::uint8_t*>(plaintext.data());
    const std::uint8_t* nonce = combined.data();
    const std::uint8_t* cipher = combined.data() + nonceLength;
    std::uint8_t tag[tagLength];
    std::copy_n(combined.data() + nonceLength + cipherLength, tagLength, tag);

    Context context(EVP_CIPHER_CTX_new());
    int length = 0;
    if (!context || EVP_DecryptInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, nullptr, nullptr) != 1
        || EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_IVLEN, nonceLength, nullptr) != 1
        || EVP_DecryptInit_ex(context.get(), nullptr, nullptr, key.data(), nonce) != 1
        || EVP_DecryptUpdate(context.get(), out, &length, cipher, static_cast<int>(cipherLength)) != 1
        || EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_GCM_SET_TAG, tagLength, tag) != 1) {
        fail(error, "AES-GCM opening failed");
        return std::nullopt;
    }
    if (EVP_DecryptFinal_ex(context.get(), out + length, &length) != 1) {
        fail(error, "authentication failed: a wrong key or a changed byte");
        return std::nullopt;
    }
    return plaintext;
}

} // namespace velder::AesGcm
