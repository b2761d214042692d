#pragma once

#include <string>
#include <vector>

namespace velder {

// What a start of Velder asks for, read from its command line: the addresses to open (each as the address
// bar's start-up rule makes it, those it refuses left out), in a new window or a private one. Other options
// (the engine's own) are not its business.
struct LaunchRequest {
    std::vector<std::string> urls;
    bool newWindow = false; // --new-window
    bool privateWindow = false; // --private-window

    // `arguments` as main() has them, the program first.
    static LaunchRequest parse(const std::vector<std::string>& arguments);
    // What another launch hands over to the running Velder: its addresses meet the same rule again, since
    // any program on the session bus can send them.
    static LaunchRequest handedOver(const std::vector<std::string>& urls, bool newWindow, bool privateWindow);

    bool operator==(const LaunchRequest&) const = default;
};

} // namespace velder
