#include "core/ErrorPage.h"

#include "core/ContentPolicy.h"
#include "core/Html.h"
#include "core/PageShell.h"
#include "core/Text.h"

#include <array>
#include <utility>

namespace velder::ErrorPage {

namespace {

// The engine's network error numbers, in the words the user reads.
constexpr std::array<std::pair<std::int32_t, std::string_view>, 21> reasons { {
    { -3, "The request was cancelled." },
    { -6, "That file does not exist." },
    { -7, "The server took too long to respond." },
    { -20, "The request was blocked." },
    { -21, "The network connection changed while the page was loading." },
    { -100, "The connection was closed unexpectedly." },
    { -101, "The connection was reset." },
    { -102, "The server refused the connection." },
    { -105, "That address could not be found (DNS lookup failed)." },
    { -106, "No internet connection." },
    { -107, "There was a problem with the site's security certificate." },
    { -109, "That server could not be reached." },
    { -113, "Velder and the site could not agree on a secure connection." },
    { -118, "The server took too long to respond." },
    { -200, "The site's certificate does not match its address." },
    { -201, "The site's certificate has expired or is not yet valid." },
    { -202, "The site's certificate is not from a trusted authority." },
    { -206, "The site's certificate has been revoked." },
    { -302, "Velder does not know how to open that kind of address." },
    { -310, "The page redirected too many times." },
    { -324, "The server sent no data." },
} };

} // namespace

std::string describe(std::int32_t errorCode, std::string_view errorText)
{
    for (auto& [code, text] : reasons) {
        if (code == errorCode) {
            return std::string(text);
        }
    }
    std::string_view given = Text::trimmed(errorText);
    if (!given.empty()) {
        return std::string(given) + " (" + std::to_string(errorCode) + ")";
    }
    return "Engine error " + std::to_string(errorCode) + ".";
}

std::string render(std::string_view failedURL, std::string_view reason)
{
    // The page is handed to the tab as a data: document, so its policy travels in the page itself.
    std::string policy
        = "<meta http-equiv=\"Content-Security-Policy\" content=\"" + Html::escape(ContentPolicy::errorPage()) + "\">";
    std::string body = "<p>Velder could not open this page.</p>\n<dl class=\"kv\">\n  <dt>Address</dt><dd>"
        + Html::escape(failedURL) + "</dd>\n  <dt>Reason</dt><dd>" + Html::escape(reason)
        + "</dd>\n</dl>\n<p class=\"note\">Check the address, or your network connection, then reload with "
          "Ctrl+R.</p>";
    return PageShell::render("Cannot open page", "Cannot open page", "", body, policy);
}

} // namespace velder::ErrorPage
