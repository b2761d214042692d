#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velder {

// What a tab shows when a navigation fails: a document of its own, not a velder:// route.
namespace ErrorPage {

// The reason text for an engine error number (the network error numbers the bridge reports).
std::string describe(std::int32_t errorCode, std::string_view errorText);

// The page, in the shell of the other internal pages, with the failed address and the reason escaped.
std::string render(std::string_view failedURL, std::string_view reason);

} // namespace ErrorPage

} // namespace velder
