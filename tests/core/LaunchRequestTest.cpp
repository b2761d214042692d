#include "core/LaunchRequest.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace velder::test {

// Every address of the command line, in order and as the address bar would take it at start; the window
// options wherever they stand; the engine's own options and refused addresses left out.
TEST(LaunchRequestTest, EveryAddressAndTheWindowOptions)
{
    struct Row {
        std::vector<std::string> arguments;
        LaunchRequest expected;
    };
    const Row rows[] = {
        { { "velder" }, {} },
        { { "velder", "--remote-debugging-port=9222", "example.org" }, { { "https://example.org" } } },
        { { "velder", "a.example", "about:settings", "https://c.example/x" },
            { { "https://a.example", "velder://settings/", "https://c.example/x" } } },
        { { "velder", "javascript:alert(1)", "two words", "b.example" }, { { "https://b.example" } } },
        { { "velder", "--private-window", "a.example" }, { { "https://a.example" }, false, true } },
        { { "velder", "a.example", "--new-window" }, { { "https://a.example" }, true, false } },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.arguments.back());
        LaunchRequest request = LaunchRequest::parse(row.arguments);
        EXPECT_EQ(request.urls, row.expected.urls);
        EXPECT_EQ(request.newWindow, row.expected.newWindow);
        EXPECT_EQ(request.privateWindow, row.expected.privateWindow);
        // The same addresses handed over the session bus, where any program can send them, meet the rule again.
        std::vector<std::string> addresses;
        std::copy_if(row.arguments.begin() + 1, row.arguments.end(), std::back_inserter(addresses),
            [](const std::string& argument) { return !argument.starts_with("-"); });
        EXPECT_EQ(LaunchRequest::handedOver(addresses, request.newWindow, request.privateWindow), row.expected);
    }
}

} // namespace velder::test
