#include "core/FormValues.h"

#include "core/Text.h"

#include <algorithm>

namespace velder {

namespace {

std::string decode(std::string_view text)
{
    std::string blanks(text);
    std::replace(blanks.begin(), blanks.end(), '+', ' ');
    auto decoded = Text::percentDecoded(blanks);
    return decoded ? std::move(*decoded) : blanks;
}

} // namespace

FormValues::FormValues(std::optional<std::string_view> query)
{
    if (!query || query->empty()) {
        return;
    }
    std::string_view rest = *query;
    while (true) {
        size_t amp = rest.find('&');
        std::string_view piece = rest.substr(0, amp);
        if (!piece.empty()) {
            size_t equals = piece.find('=');
            if (equals == std::string_view::npos) {
                pairs.emplace_back(decode(piece), std::string());
            } else {
                pairs.emplace_back(decode(piece.substr(0, equals)), decode(piece.substr(equals + 1)));
            }
        }
        if (amp == std::string_view::npos) {
            break;
        }
        rest = rest.substr(amp + 1);
    }
}

std::optional<std::string> FormValues::string(std::string_view name) const
{
    for (const auto& [key, value] : pairs) {
        if (key == name) {
            return value;
        }
    }
    return std::nullopt;
}

bool FormValues::flag(std::string_view name) const
{
    return string(name).has_value();
}

} // namespace velder
