#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace velder::test {

// A throw-away Ed25519 key pair that signs update archives as a publisher would.
class TestSigner {
public:
    TestSigner();
    ~TestSigner();
    TestSigner(const TestSigner&) = delete;
    TestSigner& operator=(const TestSigner&) = delete;

    std::string publicKey() const; // base64 of the 32 raw bytes
    std::string sign(const std::vector<std::uint8_t>& bytes) const; // base64 of the 64-byte signature

private:
    void* m_key; // EVP_PKEY
};

} // namespace velder::test
