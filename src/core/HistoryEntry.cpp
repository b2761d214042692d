#include "core/HistoryEntry.h"

#include "core/VldJson.h"

namespace velder {

void encodeJson(const HistoryEntry& entry, JsonObjectOut& out)
{
    // In the order the file keeps them (sorted keys), so that the hundred thousand entries of a long history
    // need no reordering on each save.
    out.putDate("lastVisitUtc", entry.lastVisitUtc);
    out.putString("title", entry.title);
    out.putString("url", entry.url);
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
