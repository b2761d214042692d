#pragma once

#include <string>
#include <string_view>

namespace velder {

// What the internal pages may load and run. Nothing comes from outside the velder scheme except data:
// images (the dashboard's icons), the settings page's one script runs by its hash, and forms submit only
// to velder: addresses.
namespace ContentPolicy {

// The value of the "Content-Security-Policy" header of every velder:// page.
std::string internalPages();
// The same kind of policy for the error page, which carries it in a <meta> element: no script at all,
// and no frame-ancestors, which a <meta> can't set.
std::string errorPage();
// "'sha256-<base64>'" of the text, as a source expression.
std::string hashSource(std::string_view script);

} // namespace ContentPolicy

} // namespace velder
