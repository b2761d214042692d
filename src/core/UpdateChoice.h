#pragma once

#include <functional>

namespace velder {

// The answer to the updater's question about an update it found or staged.
enum class UpdateChoice {
    skip = 0,
    install = 1, // go on: download it, or install what is staged
    dismiss = 2, // not this time
};

// How an answer is given; the updater waits until it is called.
using UpdateReply = std::function<void(UpdateChoice)>;

} // namespace velder
