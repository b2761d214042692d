#include "core/LaunchRequest.h"

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
    }
}

// What the running Velder is handed over the session bus meets the same rule: any program there can send it.
TEST(LaunchRequestTest, AddressesHandedOverMeetTheStartRuleAgain)
{
    LaunchRequest request = LaunchRequest::handedOver(
        { "javascript:alert(1)", "file:///etc/passwd", "about:history", "b.example" }, false, true);
    EXPECT_EQ(request.urls, (std::vector<std::string> { "velder://history/", "https://b.example" }));
    EXPECT_TRUE(request.privateWindow);
}

} // namespace velder::test
