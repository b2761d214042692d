#pragma once

#include <optional>
#include <string_view>

namespace velder {

// The parts of an absolute address that Velder asks about: scheme, host and port. A small parser of its
// own, because the dashboard parses every history entry on each render. Views point into the parsed text.
struct UrlComponents {
    std::string_view scheme; // as written; empty for a reference without one
    std::optional<std::string_view> host; // present when the address has an authority ("//"); IPv6 keeps its []
    std::optional<int> port; // only when stated

    // Nothing for text that isn't an address: a bad port, a malformed IPv6 host, spaces or control
    // characters in the authority, an unclosed bracket.
    static std::optional<UrlComponents> parse(std::string_view text);
};

} // namespace velder
