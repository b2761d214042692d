#pragma once

#include <memory>

namespace velder {

class VLDRequestContext;

// The in-memory network session that all private tabs of all private windows share. It is made for the
// first private tab and goes with the last, taking every cookie and answer of the private windows with it.
// Main thread only.
class PrivateSession {
public:
    static std::shared_ptr<VLDRequestContext> acquire();
    static void release();
    // The live session, or null.
    static std::shared_ptr<VLDRequestContext> current();
    static int holders();
};

} // namespace velder
