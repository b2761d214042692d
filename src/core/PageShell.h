#pragma once

#include "core/Color.h"
#include "core/InternalRoute.h"

#include <optional>
#include <string>
#include <string_view>

namespace velder {

// The frame of every internal page: head and stylesheet, heading, navigation, in the user's colours.
namespace PageShell {

// The page text of "shell.html" with its placeholders, read once; the unstyled fallback if it is missing.
const std::string& templateText();
// The template from the compiled-in resource given, or the fallback with its one log line when the
// resource is missing or isn't UTF-8.
std::string templateFrom(std::optional<std::string_view> resource);

// A span for the current route, links for the others, in route order.
std::string nav(InternalRoute current);
std::string nav(std::optional<InternalRoute> current);

// Fills the template: title and heading are plain text (escaped here); nav and body are trusted HTML.
// The body goes in last, so that no text inside it can pose as a placeholder. `headExtra`, trusted HTML,
// goes right after "<head>".
std::string render(std::string_view title, std::string_view heading, std::string_view nav, std::string_view body,
    std::string_view headExtra = {});

// "#rrggbb", each component rounded from its 0...1 value times 255.
std::string hex(Color color);

} // namespace PageShell

} // namespace velder
