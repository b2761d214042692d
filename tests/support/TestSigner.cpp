#include "support/TestSigner.h"

#include <glib.h>
#include <memory>
#include <openssl/evp.h>

namespace velder::test {

namespace {

std::string base64(const unsigned char* bytes, size_t size)
{
    std::unique_ptr<gchar, decltype(&g_free)> text(g_base64_encode(bytes, size), g_free);
    return text.get();
}

} // namespace

TestSigner::TestSigner()
    : m_key(EVP_PKEY_Q_keygen(nullptr, nullptr, "ED25519"))
{
}

TestSigner::~TestSigner()
{
    EVP_PKEY_free(static_cast<EVP_PKEY*>(m_key));
}

std::string TestSigner::publicKey() const
{
    unsigned char raw[32];
    size_t size = sizeof raw;
    EVP_PKEY_get_raw_public_key(static_cast<EVP_PKEY*>(m_key), raw, &size);
    return base64(raw, size);
}

std::string TestSigner::sign(const std::vector<std::uint8_t>& bytes) const
{
    unsigned char signature[64];
    size_t size = sizeof signature;
    EVP_MD_CTX* context = EVP_MD_CTX_new();
    EVP_DigestSignInit(context, nullptr, nullptr, nullptr, static_cast<EVP_PKEY*>(m_key));
    EVP_DigestSign(context, signature, &size, bytes.data(), bytes.size());
    EVP_MD_CTX_free(context);
    return base64(signature, size);
}

} // namespace velder::test
