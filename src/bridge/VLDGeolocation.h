#pragma once

#include "bridge/VLDPositionSource.h"

#include <memory>

namespace velder {

// Where the engine's pages get their positions. Without a source the engine asks GeoClue by itself; with
// one, the source is the only road, so Velder knows when a position can't come and the page hears it.
// Main thread only, after the engine has started.
namespace VLDGeolocation {

// Replaces the source; null gives the road back to the engine.
void setPositionSource(std::shared_ptr<VLDPositionSource> source);

} // namespace VLDGeolocation

} // namespace velder
