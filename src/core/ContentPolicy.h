#pragma once

#include <string>

namespace velder {

// The Content-Security-Policy that every internal page is served with.
namespace ContentPolicy {

// The value of the page's "Content-Security-Policy" header.
std::string internalPages();

} // namespace ContentPolicy

} // namespace velder
