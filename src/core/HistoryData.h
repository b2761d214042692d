#pragma once

#include "core/HistoryEntry.h"

#include <vector>

namespace velder {

// The record of "history.bin": the entries in store order, newest visit first.
struct HistoryData {
    std::vector<HistoryEntry> entries;

    bool operator==(const HistoryData&) const = default;
};

void encodeJson(const HistoryData&, JsonObjectOut&);
void decodeJson(const JsonObjectIn&, HistoryData&);

} // namespace velder
