#pragma once

#include "core/Date.h"

#include <string>

namespace velder {

class JsonObjectIn;
class JsonObjectOut;

// One site's icon as the dashboard shows it.
struct FaviconEntry {
    std::string mime; // found by looking at the bytes, never the server's word
    std::string data; // the icon's bytes as standard Base64, without line breaks
    Date fetchedUtc; // when it was stored

    bool operator==(const FaviconEntry&) const = default;
};

void encodeJson(const FaviconEntry&, JsonObjectOut&);
void decodeJson(const JsonObjectIn&, FaviconEntry&);

} // namespace velder
