#pragma once

#include <string>

namespace velder {

// Where location answers are mirrored into the engine: the persistent session of ordinary tabs, and the
// in-memory session that private tabs share while one exists. Filled in by the window layer.
class LocationMirror {
public:
    virtual ~LocationMirror() = default;
    virtual void writeGlobal(const std::string& origin, int engineSetting) = 0;
    // Does nothing when no private session exists.
    virtual void writePrivate(const std::string& origin, int engineSetting) = 0;
    virtual bool hasPrivateContext() const = 0;
};

} // namespace velder
