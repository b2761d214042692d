#pragma once

#include <string>

namespace velder {

// The velder:// pages act on plain addresses ("?clear=1"), so whoever can make Velder load one acts as the
// user. A velder:// address is loaded only when it comes from the user or from a velder:// page; one that
// comes from any other page (a link opened in a new tab, a popup, a downloaded link) is refused and logged.
namespace InternalAddressGuard {

// True when `target` may be opened on behalf of the page at `sourcePage`. Logs the refusal otherwise.
bool allows(const std::string& target, const std::string& sourcePage);

} // namespace InternalAddressGuard

} // namespace velder
