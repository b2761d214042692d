#pragma once

#include "bridge/VLDPermissionRequest.h"

#include <cstddef>
#include <cstdint>
#include <glib-object.h>
#include <memory>
#include <string>

namespace velder {

class VLDBrowserViewImpl;

// Carries a page's permission requests to the owner of its view. Only geolocation is asked about, and only
// when the session's stored answer for the origin doesn't decide it already; everything else is denied at
// once. A request the owner takes is parked here until it is answered, the page goes (the engine never
// withdraws a request itself: a new document or a crashed page stands for that), or the view closes.
//
// Main thread only, as the engine calls it.
namespace VLDPermissionBridge {

// The engine asks for a permission (`request` is the engine's request object).
void handleRequest(const std::shared_ptr<VLDBrowserViewImpl>& view, GObject* request);

// The page asks what a permission would get (`query` is the engine's state query object): location
// is answered from the session's stored answer, then by the owner, on the road a request takes; camera and
// microphone are refused, as their requests are. False leaves any other name to the engine.
bool answerStateQuery(const std::shared_ptr<VLDBrowserViewImpl>& view, void* query);

// The page's document went: its parked requests are withdrawn, and the owner told.
void withdrawParkedRequests(const std::shared_ptr<VLDBrowserViewImpl>& view);

// The view's browser closes: its parked requests are denied.
void answerParkedPermissions(std::uint64_t viewIdentifier);

std::size_t parkedCountForTesting(std::uint64_t viewIdentifier);
// A request of no engine request, for tests of the answer-once rules.
std::shared_ptr<VLDPermissionRequest> requestForTesting(VLDPermissionRequest::Kind kind, const std::string& origin);

} // namespace VLDPermissionBridge

} // namespace velder
