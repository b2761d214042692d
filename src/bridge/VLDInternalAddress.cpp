#include "bridge/VLDInternalAddress.h"

#include "core/Log.h"

#include <cstring>
#include <glib.h>

namespace velder::VLDInternalAddress {

bool isInternal(const std::string& url)
{
    // Lower-cased by GLib.
    const char* scheme = g_uri_peek_scheme(url.c_str());
    return scheme && std::strcmp(scheme, "velder") == 0;
}

bool mayNavigate(const std::string& currentPage, const std::string& target, bool isRedirect)
{
    if (!isInternal(target)) {
        return true;
    }
    return !isRedirect && isInternal(currentPage);
}

bool pageMayOpen(const std::string& sourcePage, const std::string& target)
{
    if (mayNavigate(sourcePage, target, false)) {
        return true;
    }
    log(refusalLine(target));
    return false;
}

std::string refusalLine(const std::string& target)
{
    return "Velder: refused velder:// address from web content: " + target;
}

} // namespace velder::VLDInternalAddress
