#pragma once

namespace velder {

// The desktop's own location permission. WebKit reads positions from GeoClue itself, and GeoClue only gives
// them to an application its agent has allowed: a site that Velder allows can still get nothing. Velder asks
// GeoClue when a site's request makes it relevant, and logs the state it is in, so that silent failure leaves
// a trace. It never reads a position itself. Main thread only.
class PlatformLocation {
public:
    enum Status : long { undetermined = 0, unavailable = 1, denied = 2, granted = 3 };

    // Before a request is allowed, and when one is parked: asks GeoClue if it hasn't been asked yet.
    static void ensureAuthorization();
    // A stored allow was just mirrored to the engine; logs the state once per run.
    static void noteAuthorizationForMirroredAllow();
    static Status status();
};

} // namespace velder
