#pragma once

#include "core/LocationMirror.h"

namespace velder {

// Mirrors location answers into the engine's sessions: the persistent one, and the private one while it lives.
class EngineLocationMirror : public LocationMirror {
public:
    void writeGlobal(const std::string& origin, int engineSetting) override;
    void writePrivate(const std::string& origin, int engineSetting) override;
    bool hasPrivateContext() const override;
};

} // namespace velder
