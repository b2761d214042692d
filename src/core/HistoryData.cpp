#include "core/HistoryData.h"

#include "core/VldJson.h"

namespace velder {

void encodeJson(const HistoryData& data, JsonObjectOut& out)
{
    out.putRecordArray("entries", data.entries);
}

void decodeJson(const JsonObjectIn& in, HistoryData& data)
{
    data.entries = in.recordArray<HistoryEntry>("entries");
}

} // namespace velder
