#pragma once

#include <string>

namespace velder {

// What the updater is doing, as a window's title bar shows it.
struct UpdateState {
    enum class Case {
        idle, // nothing is going on
        checking, // a check is running
        staged, // a downloaded update waits for the user
    };

    Case value = Case::idle;
    std::string version; // the staged update's version

    static UpdateState idle() { return {}; }
    static UpdateState checking() { return { Case::checking, {} }; }
    static UpdateState staged(std::string version) { return { Case::staged, std::move(version) }; }

    bool operator==(const UpdateState&) const = default;
};

} // namespace velder
