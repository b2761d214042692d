#pragma once

#include <map>
#include <string>

namespace velder {

// A named event with an optional sender and boolean details ("clean" for the updater's state).
struct Notification {
    std::string name;
    const void* object = nullptr;
    std::map<std::string, bool> userInfo;
};

} // namespace velder
