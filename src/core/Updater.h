#pragma once

#include <optional>
#include <string>

namespace velder {

// The updater backend as UpdateController drives it: it fetches the feed, checks, downloads, verifies and
// unpacks an update, and reports to UpdateUserDriver and back to the controller. Main thread only.
class Updater {
public:
    virtual ~Updater() = default;

    // Prepares the backend; nothing when it can run, else why not.
    virtual std::optional<std::string> start() = 0;
    // A check the user asked for, and one of the program's own.
    virtual void checkForUpdates() = 0;
    virtual void checkForUpdatesInBackground() = 0;
};

} // namespace velder
