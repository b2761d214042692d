#pragma once

#include "FakeBrowserView.h"
#include "shell/window/AppDelegate.h"
#include "shell/window/WindowRegistry.h"
#include "support/MainLoop.h"
#include "support/ScopedStores.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace velder {
class BrowserTab;
class MainWindow;
} // namespace velder

namespace velder::test {

// A window-layer test: a profile and stores of its own, an application delegate, and fake browser views
// unless the test asks for the engine's.
class ShellTest : public ::testing::Test {
protected:
    explicit ShellTest(bool fakeViews = true);
    ~ShellTest() override;

    std::shared_ptr<FakeBrowserView> fakeViewOf(const BrowserTab& tab) const;
    // A window in the registry, not shown, with one tab per URL, each with a live fake browser.
    std::shared_ptr<MainWindow> windowWith(const std::vector<std::string>& urls, bool isPrivate = false) const;

    ScopedStores stores;
    std::unique_ptr<AppDelegate> delegate;
};

} // namespace velder::test
