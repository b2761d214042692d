#include "core/FaviconData.h"

#include "core/VldJson.h"

namespace velder {

void encodeJson(const FaviconData& data, JsonObjectOut& out)
{
    out.putRecordMap("icons", data.icons);
}

void decodeJson(const JsonObjectIn& in, FaviconData& data)
{
    data.icons = in.recordMap<FaviconEntry>("icons");
}

} // namespace velder
