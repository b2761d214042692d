#pragma once

#include <string>

namespace velder {

// The answer to a velder:// request: a page, or a redirect that carries the user on after an action.
struct InternalPageResponse {
    std::string body;
    std::string mimeType = "text/html";
    int statusCode = 200;
    std::string redirectURL; // empty: no redirect

    static InternalPageResponse html(std::string page) { return { std::move(page), "text/html", 200, {} }; }
    static InternalPageResponse redirectTo(std::string url) { return { {}, "text/html", 302, std::move(url) }; }
};

} // namespace velder
