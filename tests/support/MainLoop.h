#pragma once

#include <chrono>
#include <functional>

namespace velder::test {

// Runs the default GLib main context (where the engine, GTK and the test server live) until the condition
// holds or the timeout passes; returns the condition's last answer. Never waits longer than the timeout.
bool runMainLoopUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout);

// Runs the main context for the given time, for things that must *not* happen.
void runMainLoopFor(std::chrono::milliseconds duration);

} // namespace velder::test
