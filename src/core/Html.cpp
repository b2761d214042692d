#include "core/Html.h"

#include "core/UrlHelper.h"

#include <algorithm>

namespace velder::Html {

void appendEscaped(std::string& out, std::string_view text)
{
    size_t from = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        const char* entity;
        switch (text[i]) {
        case '&':
            entity = "&amp;";
            break;
        case '<':
            entity = "&lt;";
            break;
        case '>':
            entity = "&gt;";
            break;
        case '"':
            entity = "&quot;";
            break;
        case '\'':
            entity = "&#39;";
            break;
        default:
            continue;
        }
        out.append(text, from, i - from);
        out.append(entity);
        from = i + 1;
    }
    out.append(text, from, std::string_view::npos);
}

std::string escape(std::string_view text)
{
    std::string out;
    out.reserve(text.size() + text.size() / 8);
    appendEscaped(out, text);
    return out;
}

bool isLinkable(std::string_view url)
{
    auto scheme = UrlHelper::scheme(url);
    return scheme && std::find(linkableSchemes.begin(), linkableSchemes.end(), *scheme) != linkableSchemes.end();
}

std::string link(std::string_view url, std::string_view text)
{
    if (!isLinkable(url)) {
        return escape(text);
    }
    std::string out = "<a href=\"";
    appendEscaped(out, url);
    out += "\">";
    appendEscaped(out, text);
    out += "</a>";
    return out;
}

} // namespace velder::Html
