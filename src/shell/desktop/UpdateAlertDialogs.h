#pragma once

#include "core/UpdateAlerts.h"

namespace velder {

// The updater's alerts as modal GTK message dialogs in front of the active window (or on their own when
// none is open), informational, with the buttons the controller names. The dialog doesn't hold the main
// loop: the answer arrives when the user gives it.
class UpdateAlertDialogs final : public UpdateAlerts {
public:
    void report(const std::string& title, const std::string& text) override;
    void ask(const std::string& title, const std::string& text, const std::string& firstButton,
        const std::string& secondButton, std::function<void(bool first)> answer) override;
};

} // namespace velder
