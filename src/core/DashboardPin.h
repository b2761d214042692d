#pragma once

#include <optional>
#include <string>

namespace velder {

class JsonObjectIn;
class JsonObjectOut;

// A site the user pinned to the dashboard, with the address and title its tile shows.
struct DashboardPin {
    std::string site; // required
    std::string url; // required
    std::optional<std::string> title;

    bool operator==(const DashboardPin&) const = default;
};

void encodeJson(const DashboardPin&, JsonObjectOut&);
void decodeJson(const JsonObjectIn&, DashboardPin&);

} // namespace velder
