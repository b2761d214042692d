#pragma once

#include "core/FaviconEntry.h"

#include <map>
#include <string>

namespace velder {

// The record of "favicons.bin": one icon per site key.
struct FaviconData {
    std::map<std::string, FaviconEntry> icons;

    bool operator==(const FaviconData&) const = default;
};

void encodeJson(const FaviconData&, JsonObjectOut&);
void decodeJson(const JsonObjectIn&, FaviconData&);

} // namespace velder
