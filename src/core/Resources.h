#pragma once

#include <optional>
#include <string_view>

namespace velder {

// Files compiled into the program from resources/ ("shell.html"), looked up by name.
namespace Resources {

std::optional<std::string_view> lookup(std::string_view name);

} // namespace Resources

} // namespace velder
