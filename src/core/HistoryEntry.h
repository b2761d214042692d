#pragma once

#include "core/Date.h"

#include <cstdint>
#include <string>

namespace velder {

class JsonObjectIn;
class JsonObjectOut;

// One visited address: its last title, its last visit and how many visits it had.
struct HistoryEntry {
    std::string url; // trimmed; the identity of the entry
    std::string title; // the last non-empty title, or empty
    Date lastVisitUtc;
    std::int64_t visitCount = 1; // 1 or more

    bool operator==(const HistoryEntry&) const = default;
};

void encodeJson(const HistoryEntry&, JsonObjectOut&);
void decodeJson(const JsonObjectIn&, HistoryEntry&);

} // namespace velder
