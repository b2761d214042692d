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

bool has(const std::vector<std::string>& list, const std::string& item)
{
    return std::find(list.begin(), list.end(), item) != list.end();
}

} // namespace

TEST(ContentPolicy, HashSourceIsSha256InBase64)
{
    // echo -n 'alert(1)' | openssl dgst -sha256 -binary | base64
    EXPECT_EQ(ContentPolicy::hashSource("alert(1)"), "'sha256-bhHHL3z2vDgxUt0W3dWQOrprscmda2Y5pLsLg4GF+pI='");
    EXPECT_EQ(ContentPolicy::hashSource(""), "'sha256-47DEQpj8HBSa+/TImW+5JCeuQeRkm5NMpJWZG3hSuFU='");
}

// Internal pages run the settings page's one script, by its hash, and nothing else; the error page, shown for
// addresses a page chose, runs no script at all.
TEST(ContentPolicy, OnlyTheSettingsScriptRuns)
{
    ScopedStores stores;
    std::string page = SettingsPage::render(SettingsPage::Notice::none(), false);
    size_t open = page.find("<script>");
    ASSERT_NE(open, std::string::npos);
    ASSERT_EQ(page.find("<script", open + 1), std::string::npos) << "one script only";
    std::string rendered = page.substr(open + 8, page.find("</script>") - open - 8);

    auto internal = directives(ContentPolicy::internalPages());
    auto error = directives(ContentPolicy::errorPage());
    EXPECT_TRUE(has(internal, "script-src " + ContentPolicy::hashSource(rendered)));
    EXPECT_TRUE(has(internal, "frame-ancestors 'none'"));
    for (const auto* policy : { &internal, &error }) {
        EXPECT_EQ(policy->front(), "default-src 'none'");
        EXPECT_TRUE(has(*policy, "object-src 'none'"));
        EXPECT_TRUE(has(*policy, "base-uri 'none'"));
        EXPECT_TRUE(has(*policy, "form-action velder:"));
    }
    EXPECT_TRUE(std::none_of(error.begin(), error.end(), [](auto& d) { return d.starts_with("script-src"); }));
}
