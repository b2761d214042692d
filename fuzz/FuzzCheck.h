#pragma once

// What the fuzz targets share: a property that fails stops the run where it failed, with its name in the
// log, so libFuzzer keeps the input that broke it.

#include "core/Log.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace velder::fuzz {

inline void check(bool holds, std::string_view property)
{
    if (!holds) {
        log("Velder: fuzz property failed: " + std::string(property));
        __builtin_trap();
    }
}

inline std::string_view text(const std::uint8_t* data, std::size_t size)
{
    return std::string_view(reinterpret_cast<const char*>(data), size);
}

} // namespace velder::fuzz
