#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velder {

// Fetches an icon through the network session of one page, cookies included. Implemented over the
// engine's browser view by the window layer.
class IconSource {
public:
    virtual ~IconSource() = default;
    // `completion` runs exactly once, on the main thread, with the body of a 200 response of at most
    // `maxBytes` bytes, or with nothing.
    virtual void fetchIcon(const std::string& url, std::uint64_t maxBytes,
        std::function<void(std::optional<std::vector<std::uint8_t>>)> completion)
        = 0;
};

} // namespace velder
