#include "core/FaviconEntry.h"

#include "core/VldJson.h"

namespace velder {

// Stored below "Icons", where every key stays as written: "mime", "data", "fetchedUtc".
void encodeJson(const FaviconEntry& entry, JsonObjectOut& out)
{
    // Sorted, as the file keeps them.
    out.putString("data", entry.data);
    out.putDate("fetchedUtc", entry.fetchedUtc);
    out.putString("mime", entry.mime);
}

void decodeJson(const JsonObjectIn& in, FaviconEntry& entry)
{
    entry.mime = in.string("mime");
    entry.data = in.string("data");
    entry.fetchedUtc = in.date("fetchedUtc");
}

} // namespace velder
