#pragma once

#include <functional>
#include <string>

namespace velder {

// Where the updater's alerts are shown: modal, informational, in front of the windows. Main thread only.
class UpdateAlerts {
public:
    virtual ~UpdateAlerts() = default;

    // A title, a text and one button, "OK".
    virtual void report(const std::string& title, const std::string& text) = 0;
    // A title, a text and two buttons; `answer` learns whether the first was chosen.
    virtual void ask(const std::string& title, const std::string& text, const std::string& firstButton,
        const std::string& secondButton, std::function<void(bool first)> answer)
        = 0;
};

} // namespace velder
