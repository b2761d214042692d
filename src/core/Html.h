#pragma once

#include <array>
#include <string>
#include <string_view>

namespace velder {

// Escaping for the internal pages. Every text that came from a web page, the history or the user goes
// through escape(); one level serves both text and attribute values.
namespace Html {

// The only schemes an internal page links to.
inline constexpr std::array<std::string_view, 3> linkableSchemes { "http", "https", "velder" };

// & < > " ' as entities; everything else unchanged.
std::string escape(std::string_view text);
void appendEscaped(std::string& out, std::string_view text);

bool isLinkable(std::string_view url);
// A link for http, https and velder addresses; for any other (javascript:, file:, none) the text alone.
std::string link(std::string_view url, std::string_view text);

} // namespace Html

} // namespace velder
