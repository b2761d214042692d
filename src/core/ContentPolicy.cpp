#include "core/ContentPolicy.h"

#include "core/SettingsPage.h"

#include <openssl/evp.h>
#include <openssl/sha.h>

namespace velder::ContentPolicy {

std::string hashSource(std::string_view script)
{
    unsigned char digest[SHA256_DIGEST_LENGTH];
    SHA256(reinterpret_cast<const unsigned char*>(script.data()), script.size(), digest);
    unsigned char encoded[4 * ((SHA256_DIGEST_LENGTH + 2) / 3) + 1];
    int length = EVP_EncodeBlock(encoded, digest, SHA256_DIGEST_LENGTH);
    return "'sha256-" + std::string(reinterpret_cast<const char*>(encoded), static_cast<size_t>(length)) + "'";
}

std::string internalPages()
{
    static const std::string policy = "default-src 'none'; img-src velder: data:; style-src 'unsafe-inline'; "
                                      "script-src "
        + hashSource(SettingsPage::script())
        + "; form-action velder:; frame-ancestors 'none'; base-uri 'none'; object-src 'none'";
    return policy;
}

std::string errorPage()
{
    return "default-src 'none'; img-src velder: data:; style-src 'unsafe-inline'; form-action velder:; "
           "base-uri 'none'; object-src 'none'";
}

} // namespace velder::ContentPolicy
