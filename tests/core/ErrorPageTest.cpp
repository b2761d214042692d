#include "core/ErrorPage.h"

#include "core/ContentPolicy.h"
#include "core/Html.h"
#include "support/ScopedStores.h"

#include "CoreTestSupport.h"

#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;

TEST(ErrorPage, KnownCodesInWordsOthersWithTheEnginesText)
{
    struct Case {
        std::int32_t code;
        const char* text;
        const char* reason;
    };
    for (const Case& c : std::vector<Case> {
             { -105, "net::ERR_NAME_NOT_RESOLVED", "That address could not be found (DNS lookup failed)." },
             { -999, "  Odd failure\n", "Odd failure (-999)" },
             { 7, "Seven", "Seven (7)" },
             { -999, " \n\t", "Engine error -999." },
             { -2, "", "Engine error -2." },
         }) {
        SCOPED_TRACE(c.code);
        EXPECT_EQ(ErrorPage::describe(c.code, c.text), c.reason);
    }
}

TEST(ErrorPage, RenderEscapesAndCarriesItsPolicyBeforeAnyStyle)
{
    ScopedStores stores;
    std::string page = ErrorPage::render("https://a.example/\"><script>x</script>", "Reason <b> & more");
    expectParts(page,
        { "<title>Cannot open page</title>", "<dd>https://a.example/&quot;&gt;&lt;script&gt;x&lt;/script&gt;</dd>",
            "<dd>Reason &lt;b&gt; &amp; more</dd>" },
        { "<script", "<b>", "velder://" }); // no links to the internal pages either
    std::string meta = "<head><meta http-equiv=\"Content-Security-Policy\" content=\""
        + Html::escape(ContentPolicy::errorPage()) + "\">";
    EXPECT_NE(page.find(meta), std::string::npos);
    EXPECT_LT(page.find(meta), page.find("<style"));
}
