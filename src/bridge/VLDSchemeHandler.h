#pragma once

#include "bridge/VLDInternalPages.h"

namespace velder {

// Serves velder:// to the engine. Each request is answered later, on the main loop, by the registered
// source; a page goes back with its status and Velder's headers, a redirect is carried out by loading its
// target in the requesting view, and anything else is a 404 without a body or headers.
namespace VLDSchemeHandler {

// Registers the scheme with the engine: served by this handler, secure and display-isolated, so that a
// page of another scheme can neither load nor embed it. Once per process; later calls do nothing.
void registerScheme();

void setSource(VLDInternalPageSource source);

} // namespace VLDSchemeHandler

} // namespace velder
