#include "core/WindowSession.h"

#include "core/VldJson.h"

namespace velder {

void encodeJson(const WindowSession& session, JsonObjectOut& out)
{
    out.putStringArray("tabs", session.tabs);
    out.putInt("activeTab", session.activeTab);
    out.putOptionalInt("x", session.x);
    out.putOptionalInt("y", session.y);
    out.putOptionalInt("w", session.w);
    out.putOptionalInt("h", session.h);
    out.putString("state", storedName(session.state));
}

void decodeJson(const JsonObjectIn& in, WindowSession& session)
{
    session.tabs = in.stringArray("tabs");
    session.activeTab = in.integer("activeTab");
    session.x = in.optionalInteger("x");
    session.y = in.optionalInteger("y");
    session.w = in.optionalInteger("w");
    session.h = in.optionalInteger("h");
    session.state = windowStateFromStored(in.string("state"));
}

} // namespace velder
