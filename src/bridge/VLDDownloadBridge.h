#pragma once

#include <cstdint>
#include <glib-object.h>

namespace velder {

// Carries the engine's downloads to the owner of the view that started them: one question about the
// destination, answered exactly once, then the updates. Downloads of no view, or of an owner without an
// answer, go to the default path. Main thread only.
namespace VLDDownloadBridge {

// Every network session reports its downloads here (`download` is the engine's download object).
void downloadStarted(GObject* download);

// A transfer the bridge makes for itself (an icon fetch): left alone by this flow.
void markAsOwnTransfer(GObject* download);

// How many destination callbacks the table holds (tests).
std::size_t callbackCountForTesting();

} // namespace VLDDownloadBridge

} // namespace velder
