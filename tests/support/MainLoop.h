#pragma once

#include <chrono>
#include <functional>

namespace velder::test {

// The one wait of the tests: runs the default GLib main context (where the engine, GTK and the test server
// live) until the condition holds or the bound passes; returns the condition's last answer. The bound only
// keeps a broken test from hanging: a passing test never reaches it.
bool runMainLoopUntil(
    const std::function<bool()>& condition, std::chrono::milliseconds bound = std::chrono::seconds(10));

// Runs the main context for the given time, for things that must *not* happen.
void runMainLoopFor(std::chrono::milliseconds duration);

} // namespace velder::test
