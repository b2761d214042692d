#pragma once

#include <cstdint>
#include <string>

namespace velder {

// A site's request for a permission, answered exactly once: by allow or deny, by the bridge when the view
// closes, or withdrawn by the engine when the page goes. One dropped unanswered is denied and logged.
class VLDPermissionRequest {
public:
    enum class Kind : long { other = 0, geolocation = 1 };
    // What a page is told when it asks, before any request, what a request would get.
    enum class State { granted, denied, prompt };

    virtual ~VLDPermissionRequest() = default;
    virtual Kind kind() const = 0;
    virtual const std::string& origin() const = 0; // the requesting page's origin
    virtual std::uint64_t promptId() const = 0;
    virtual bool isAnswered() const = 0;
    virtual void allow() = 0;
    virtual void deny() = 0;
};

} // namespace velder
