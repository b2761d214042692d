#pragma once

#include "core/WindowState.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velder {

class JsonObjectIn;
class JsonObjectOut;

// One saved window: its tabs' addresses, the active one, its frame when it has a placement of its own.
struct WindowSession {
    std::vector<std::string> tabs; // required
    std::int64_t activeTab = 0; // required; an index into tabs
    std::optional<std::int64_t> x;
    std::optional<std::int64_t> y;
    std::optional<std::int64_t> w;
    std::optional<std::int64_t> h;
    WindowState state = WindowState::normal; // required

    bool operator==(const WindowSession&) const = default;
};

void encodeJson(const WindowSession&, JsonObjectOut&);
void decodeJson(const JsonObjectIn&, WindowSession&);

} // namespace velder
