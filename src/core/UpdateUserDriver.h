#pragma once

#include "core/AppcastItem.h"
#include "core/UpdateChoice.h"

#include <functional>
#include <string>

namespace velder {

class UpdateController;

// What the updater backend tells the user, turned into silent answers or calls on the controller, so that
// the updater never shows a window of its own. The backend's progress reports (download, extraction) are
// not shown at all: the title bar's spinner stands for the whole check. Main thread only.
class UpdateUserDriver {
public:
    explicit UpdateUserDriver(UpdateController& controller)
        : m_controller(controller)
    {
    }

    // A newer version in the feed: dismissed at once when it is the version that failed to install, else
    // downloaded without asking.
    void showUpdateFound(const AppcastItem& item, const UpdateReply& reply);
    // Nothing newer, and a failed check: an alert only when the user asked.
    void showUpdateNotFound(const std::function<void()>& acknowledgement);
    void showUpdaterError(const std::string& description, const std::function<void()>& acknowledgement);
    // Downloaded, verified and unpacked: the controller stages it until the user clicks the badge.
    void showReady(UpdateReply reply);
    void showUpdateInstalledAndRelaunched(const std::function<void()>& acknowledgement);

    const std::string& stagedVersionName() const { return m_stagedVersionName; }

private:
    UpdateController& m_controller;
    std::string m_stagedVersionName;
};

} // namespace velder
