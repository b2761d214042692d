#pragma once

#include "core/Color.h"

#include <string>

namespace velder {

// One named colour the user can pick in the settings.
struct Swatch {
    std::string key;
    std::string label;
    Color color;
};

} // namespace velder
