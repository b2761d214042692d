#pragma once

#include "core/UpdateAlerts.h"

#include <string>
#include <vector>

namespace velder::test {

// The updater's alerts as lines, "title: text" (with " [first|second]" for a question); the last question's
// answer waits for the test.
struct FakeUpdateAlerts final : UpdateAlerts {
    std::vector<std::string> shown;
    std::function<void(bool)> answer;

    void report(const std::string& title, const std::string& text) override { shown.push_back(title + ": " + text); }
    void ask(const std::string& title, const std::string& text, const std::string& first, const std::string& second,
        std::function<void(bool)> reply) override
    {
        shown.push_back(title + ": " + text + " [" + first + "|" + second + "]");
        answer = std::move(reply);
    }
};

} // namespace velder::test
