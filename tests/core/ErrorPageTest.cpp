#include "core/ErrorPage.h"

#include "core/ContentPolicy.h"
#include "core/Html.h"
#include "support/ScopedStores.h"

#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;

TEST(ErrorPage, Describe)
{
    struct Case {
        std::int32_t code;
        const char* text;
        const char* reason;
    };
    for (const Case& c : std::vector<Case> {
             { -3, "net::ERR_ABORTED", "The request was cancelled." },
             { -105, "", "That address could not be found (DNS lookup failed)." },
             { -7, "x", "The server took too long to respond." },
             { -118, "x", "The server took too long to respond." },
             { -113, "", "Velder and the site could not agree on a secure connection." },
             { -202, "", "The site's certificate is not from a trusted authority." },
             { -302, "", "Velder does not know how to open that kind of address." },
             { -324, "", "The server sent no data." },
             { -999, "  Odd failure\n", "Odd failure (-999)" },
             { 7, "Seven", "Seven (7)" },
             { -999, "", "Engine error -999." },
             { -999, " \n\t", "Engine error -999." },
             { -2, "", "Engine error -2." },
         }) {
        SCOPED_TRACE(c.code);
        EXPECT_EQ(ErrorPage::describe(c.code, c.text), c.reason);
    }
}

TEST(ErrorPage, Render)
{
    ScopedStores stores;
    std::string page = ErrorPage::render("https://a.example/\"><script>x</script>", "Reason <b> & more");
    EXPECT_NE(page.find("<title>Cannot open page</title>"), std::string::npos);
    EXPECT_NE(page.find("<h1>Cannot open page</h1><nav></nav></header>"
                        "<p>Velder could not open this page.</p>\n<dl class=\"kv\">\n  <dt>Address</dt><dd>"
                        "https://a.example/&quot;&gt;&lt;script&gt;x&lt;/script&gt;</dd>\n  <dt>Reason</dt><dd>Reason "
                        "&lt;b&gt; &amp; more</dd>\n</dl>\n<p class=\"note\">Check the address, or your network "
                        "connection, then reload with Ctrl+R.</p></div>"),
        std::string::npos);
    EXPECT_EQ(page.find("<script"), std::string::npos);
    EXPECT_EQ(page.find("velder://"), std::string::npos) << "no links to the internal pages";

    // The policy travels in the head, before any style it governs.
    std::string meta = "<head><meta http-equiv=\"Content-Security-Policy\" content=\""
        + Html::escape(ContentPolicy::errorPage()) + "\">";
    EXPECT_NE(page.find(meta), std::string::npos);
    EXPECT_LT(page.find(meta), page.find("<style"));
}
