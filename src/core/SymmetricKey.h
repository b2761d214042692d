#pragma once

#include <array>
#include <cstdint>

namespace velder {

// A 256-bit AES key.
using SymmetricKey = std::array<std::uint8_t, 32>;

} // namespace velder
