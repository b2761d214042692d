#include "core/DashboardPin.h"

#include "core/VldJson.h"

namespace velder {

void encodeJson(const DashboardPin& pin, JsonObjectOut& out)
{
    out.putString("site", pin.site);
    out.putString("url", pin.url);
    out.putOptionalString("title", pin.title);
}

void decodeJson(const JsonObjectIn& in, DashboardPin& pin)
{
    pin.site = in.string("site");
    pin.url = in.string("url");
    pin.title = in.optionalString("title");
}

} // namespace velder
