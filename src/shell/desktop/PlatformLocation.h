#pragma once

#include <memory>

namespace velder {

class VLDPositionSource;

// The desktop's location service, GeoClue, and Velder's permission to use it. GeoClue only gives positions
// to an application its agent allows: a site that Velder allows can still get nothing. Velder asks GeoClue
// when a site's request makes it relevant and logs the state it is in, so that silent failure leaves a trace.
//
// It is also where the engine's pages get their positions: a GeoClue client runs only while a page watches,
// a service that is missing or refuses fails the page's request at once, and the desktop's later grant or
// withdrawal is noticed (a refusal is asked again at the next request; a withdrawal stops the positions).
// Main thread only.
class PlatformLocation {
public:
    enum Status : long { undetermined = 0, unavailable = 1, denied = 2, granted = 3 };

    // Before a request is allowed, and when one is parked: asks GeoClue unless it has said yes already.
    static void ensureAuthorization();
    // A stored allow was just mirrored to the engine; logs the state once per run.
    static void noteAuthorizationForMirroredAllow();
    static Status status();

    // The engine's position source, on GeoClue.
    static std::shared_ptr<VLDPositionSource> positionSource();
};

} // namespace velder
