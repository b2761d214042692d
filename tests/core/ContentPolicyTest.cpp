#include "core/ContentPolicy.h"

#include "core/SettingsPage.h"
#include "support/ScopedStores.h"

#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;

namespace {

std::vector<std::string> directives(const std::string& policy)
{
    std::vector<std::string> result;
    size_t from = 0;
    while (from < policy.size()) {
        size_t end = policy.find("; ", from);
        result.push_back(policy.substr(from, end - from));
        from = end == std::string::npos ? policy.size() : end + 2;
    }
    return result;
}

} // namespace

TEST(ContentPolicy, HashSourceIsSha256InBase64)
{
    // echo -n 'alert(1)' | openssl dgst -sha256 -binary | base64
    EXPECT_EQ(ContentPolicy::hashSource("alert(1)"), "'sha256-bhHHL3z2vDgxUt0W3dWQOrprscmda2Y5pLsLg4GF+pI='");
    EXPECT_EQ(ContentPolicy::hashSource(""), "'sha256-47DEQpj8HBSa+/TImW+5JCeuQeRkm5NMpJWZG3hSuFU='");
}

TEST(ContentPolicy, TheSettingsScriptRunsByItsHashAndNothingElseDoes)
{
    ScopedStores stores;
    std::string page = SettingsPage::render(SettingsPage::Notice::none(), false);
    size_t open = page.find("<script>");
    size_t close = page.find("</script>");
    ASSERT_NE(open, std::string::npos);
    ASSERT_EQ(page.find("<script", open + 1), std::string::npos) << "one script only";
    std::string rendered = page.substr(open + 8, close - open - 8);

    auto policy = directives(ContentPolicy::internalPages());
    EXPECT_EQ(policy,
        (std::vector<std::string> { "default-src 'none'", "img-src velder: data:", "style-src 'unsafe-inline'",
            "script-src " + ContentPolicy::hashSource(rendered), "form-action velder:", "frame-ancestors 'none'",
            "base-uri 'none'", "object-src 'none'" }));

    auto errorPolicy = directives(ContentPolicy::errorPage());
    EXPECT_EQ(
        std::count_if(errorPolicy.begin(), errorPolicy.end(), [](auto& d) { return d.starts_with("script-src"); }), 0);
    EXPECT_EQ(
        std::count_if(errorPolicy.begin(), errorPolicy.end(), [](auto& d) { return d.starts_with("frame-ancestors"); }),
        0);
    EXPECT_EQ(errorPolicy.front(), "default-src 'none'");
}
