#include "core/HistoryEntry.h"

#include "core/VldJson.h"

namespace velder {

void encodeJson(const HistoryEntry& entry, JsonObjectOut& out)
{
    out.putString("url", entry.url);
    out.putString("title", entry.title);
    out.putDate("lastVisitUtc", entry.lastVisitUtc);
    out.putInt("visitCount", entry.visitCount);
}

void decodeJson(const JsonObjectIn& in, HistoryEntry& entry)
{
    entry.url = in.string("url");
    entry.title = in.string("title");
    entry.lastVisitUtc = in.date("lastVisitUtc");
    entry.visitCount = in.integer("visitCount");
}

} // namespace velder
