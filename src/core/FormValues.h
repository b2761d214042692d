#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velder {

// The decoded name and value pairs of a query, in order; a name may repeat, and the first one wins.
struct FormValues {
    std::vector<std::pair<std::string, std::string>> pairs;

    FormValues() = default;
    // "+" is a blank and "%xx" an escape; a malformed escape leaves the text as it stood. Never fails.
    explicit FormValues(std::optional<std::string_view> query);

    // The value of the first pair with the name.
    std::optional<std::string> string(std::string_view name) const;
    // Whether a pair with the name exists, whatever its value ("0" and "" count).
    bool flag(std::string_view name) const;
};

} // namespace velder
