#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace velder {

// A position as the desktop's location service gives it: degrees, metres, metres per second, and seconds
// since the epoch (0 when the service names no time).
struct VLDPosition {
    double latitude = 0;
    double longitude = 0;
    double accuracy = 0;
    std::optional<double> altitude;
    std::optional<double> heading;
    std::optional<double> speed;
    std::uint64_t timestamp = 0;
};

// What feeds the engine's pages their positions. The engine starts it when the first page watches the
// position and stops it when the last one is done. Main thread only.
class VLDPositionSource {
public:
    using Update = std::function<void(const VLDPosition&)>;
    using Failure = std::function<void(const std::string& message)>;

    virtual ~VLDPositionSource() = default;
    // Positions go to `update` until stop(). A source that can't give one calls `failure`, at once when it
    // knows at once, so that no page waits for a position that won't come; the engine starts it again for
    // the next request.
    virtual void start(bool highAccuracy, Update update, Failure failure) = 0;
    virtual void stop() = 0;
};

} // namespace velder
