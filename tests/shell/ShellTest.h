#pragma once

#include "FakeBrowserView.h"
#include "core/FaviconStore.h"
#include "core/HistoryStore.h"
#include "core/Vault.h"
#include "shell/AppDelegate.h"
#include "shell/WindowRegistry.h"
#include "support/TestSupport.h"

#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <gtk/gtk.h>
#include <memory>

namespace velder::test {

// Runs the main loop until the condition holds or the timeout passes; returns the condition.
bool spinUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout = std::chrono::seconds(10));
// Runs the main loop for a while.
void spinFor(std::chrono::milliseconds duration);

// A window-layer test: a profile of its own, fresh stores, an application delegate, and fake browser views
// unless the test asks for the engine's.
class ShellTest : public ::testing::Test {
protected:
    explicit ShellTest(bool fakeViews = true);
    ~ShellTest() override;

    std::shared_ptr<FakeBrowserView> fakeView(std::size_t index) const;
    std::shared_ptr<FakeBrowserView> fakeViewOf(const class BrowserTab& tab) const;

    TestProfile profile;
    std::unique_ptr<AppDelegate> delegate;
};

} // namespace velder::test
