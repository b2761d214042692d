#pragma once

#include <string>

namespace velder {

// velder:// addresses carry actions (clearing the history, changing settings), so only the user may open
// them, or another velder:// page: never a page of any other scheme.
namespace VLDInternalAddress {

bool isInternal(const std::string& url);

// Whether a navigation of a page to `target` may go on: anything but a velder:// address may; a velder://
// one only from a velder:// page, and never by a server's redirect.
bool mayNavigate(const std::string& currentPage, const std::string& target, bool isRedirect);

// Whether the page at `sourcePage` may have Velder open `target` for it (a tab of its own, a popup, a
// download, an item of its menu): the one guard of every velder:// address a page hands over. Logs a refusal.
bool pageMayOpen(const std::string& sourcePage, const std::string& target);

// The line logged when one is refused.
std::string refusalLine(const std::string& target);

} // namespace VLDInternalAddress

} // namespace velder
