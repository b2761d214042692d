#include "shell/InternalAddressGuard.h"

#include "core/Log.h"
#include "core/UrlHelper.h"

namespace velder::InternalAddressGuard {

bool allows(const std::string& target, const std::string& sourcePage)
{
    if (UrlHelper::scheme(target) != "velder" || UrlHelper::scheme(sourcePage) == "velder") {
        return true;
    }
    log("Velder: refused velder:// address from web content: " + target);
    return false;
}

} // namespace velder::InternalAddressGuard
