#include "core/UrlHelper.h"

#include <gtest/gtest.h>

using namespace velder;

namespace {

constexpr const char* search = "https://search.example/?q={q}";

struct Row {
    const char* text;
    std::optional<std::string> expected;
};

} // namespace

TEST(UrlHelper, Scheme)
{
    for (const Row& row : std::vector<Row> {
             { "https://example.com/", "https" },
             { "HTTP://x", "http" },
             { "example.com:8080", "example.com" },
             { "localhost:3000", "localhost" },
             { "view-source:https://a", "view-source" },
             { "a+b.c-d:x", "a+b.c-d" },
             { ":nothing", std::nullopt },
             { "no colon", std::nullopt },
             { "1abc:x", std::nullopt },
             { "127.0.0.1:8080", std::nullopt },
             { "[::1]:8080", std::nullopt },
             { "bad scheme:x", std::nullopt },
         }) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(UrlHelper::scheme(row.text), row.expected);
    }
}

TEST(UrlHelper, InternalAlias)
{
    for (const Row& row : std::vector<Row> {
             { "  ABOUT:HISTORY//\n", "velder://history/" },
             { "about:config", "velder://settings/" },
             { "about:blank", std::nullopt },
             { "velder://history/", std::nullopt },
         }) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(UrlHelper::internalAlias(row.text), row.expected);
    }
}

TEST(UrlHelper, NavigationTarget)
{
    for (const Row& row : std::vector<Row> {
             { "", std::nullopt },
             { " \n\t", std::nullopt },
             { "about:history/", "velder://history/" },
             { "javascript:alert(1)", std::nullopt },
             { "JavaScript:x", std::nullopt },
             { "file:///etc/passwd", std::nullopt },
             { "data:text/html,x", std::nullopt },
             { "vbscript:x", std::nullopt },
             { "blob:https://a/1", std::nullopt },
             { "  https://example.com/a b  ", "https://example.com/a b" },
             { "ftp://files.example/", "ftp://files.example/" },
             { "example.com:8080", "example.com:8080" },
             { "example.com", "https://example.com" },
             { "example.com/path?q=1", "https://example.com/path?q=1" },
             { "example.c", "https://search.example/?q=example.c" },
             { ".example.com", "https://search.example/?q=.example.com" },
             { "example.com.", "https://search.example/?q=example.com." },
             { "a.b2", "https://search.example/?q=a.b2" },
             { "localhost", "http://localhost" },
             { "[::1]:8080/x", "http://[::1]:8080/x" },
             { "foo bar.com", "https://search.example/?q=foo%20bar.com" },
             { "foo.bar/baz qux", "https://search.example/?q=foo.bar%2Fbaz%20qux" },
             { "a&b=c~d_e-f.g", "https://search.example/?q=a%26b%3Dc~d_e-f.g" },
             { "caf\xC3\xA9", "https://search.example/?q=caf%C3%A9" },
             { "\xD0\xBF\xD1\x80\xD0\xB8\xD0\xBC\xD0\xB5\xD1\x80.\xD1\x80\xD1\x84",
                 "https://\xD0\xBF\xD1\x80\xD0\xB8\xD0\xBC\xD0\xB5\xD1\x80.\xD1\x80\xD1\x84" },
             // Numeric addresses open as pages over http, never as searches.
             { "127.0.0.1", "http://127.0.0.1" },
             { "127.0.0.1:8080/x?y", "http://127.0.0.1:8080/x?y" },
             { "192.168.1.1/admin", "http://192.168.1.1/admin" },
             { "256.1.1.1", "https://search.example/?q=256.1.1.1" },
             { "1.2.3", "https://search.example/?q=1.2.3" },
             { "1.2.3.4.5", "https://search.example/?q=1.2.3.4.5" },
             { "1.2.3.4:99999", "https://search.example/?q=1.2.3.4%3A99999" },
             { "1.2.3.4:", "https://search.example/?q=1.2.3.4%3A" },
             { "1.2.3.4 x", "https://search.example/?q=1.2.3.4%20x" },
         }) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(UrlHelper::navigationTarget(row.text, search), row.expected);
    }
}

TEST(UrlHelper, SearchTemplates)
{
    EXPECT_EQ(UrlHelper::navigationTarget("a b", "https://s.example/search?q="), "https://s.example/search?q=a%20b");
    EXPECT_EQ(UrlHelper::navigationTarget("x", "https://s.example/{q}/{q}"), "https://s.example/x/x");
    EXPECT_EQ(UrlHelper::navigationTarget("x", ""), "x");
}

TEST(UrlHelper, StartupTarget)
{
    for (const Row& row : std::vector<Row> {
             { "", std::nullopt },
             { "about:settings", "velder://settings/" },
             { "https://a.example/", "https://a.example/" },
             { "velder://history/", "velder://history/" },
             { "about:blank", "about:blank" },
             { "view-source:https://a.example/", "view-source:https://a.example/" },
             { "javascript:alert(1)", std::nullopt },
             { "file:///etc/passwd", std::nullopt },
             { "ftp://files.example/", std::nullopt },
             { "example.com:8080", std::nullopt },
             { "a.example", "https://a.example" },
             { "localhost", "http://localhost" },
             { "127.0.0.1:9", "http://127.0.0.1:9" },
             { "two words", std::nullopt },
         }) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(UrlHelper::startupTarget(row.text), row.expected);
    }
}

TEST(UrlHelper, OriginHostAndSite)
{
    struct Case {
        const char* url;
        std::optional<std::string> origin;
        std::string host;
        std::optional<std::string> site;
    };
    for (const Case& c : std::vector<Case> {
             { "https://www.A.example/x", "https://www.A.example", "A.example", "a.example" },
             { "HTTP://a.example:8080/", "http://a.example:8080", "a.example", "a.example" },
             { "http://www.a.example:80/", "http://www.a.example:80", "a.example", "a.example" },
             { "https://user:pw@b.example/", "https://b.example", "b.example", "b.example" },
             { "https://[::1]:8443/", "https://[::1]:8443", "[::1]", "[::1]" },
             { "https://a.example:/", "https://a.example", "a.example", "a.example" },
             { "ftp://a.example/", std::nullopt, "a.example", std::nullopt },
             { "velder://history/", std::nullopt, "history", std::nullopt },
             { "about:blank", std::nullopt, "", std::nullopt },
             { "https:///path", std::nullopt, "", std::nullopt },
             { "https://www./", "https://www.", "", std::nullopt },
             { "https://a.example:99999/", std::nullopt, "", std::nullopt },
             { "https://a.example:8x/", std::nullopt, "", std::nullopt },
             { "https://a b.example/", std::nullopt, "", std::nullopt },
             { "a.example", std::nullopt, "", std::nullopt },
         }) {
        SCOPED_TRACE(c.url);
        EXPECT_EQ(UrlHelper::origin(c.url), c.origin);
        EXPECT_EQ(UrlHelper::host(c.url), c.host);
        EXPECT_EQ(UrlHelper::site(std::string_view(c.url)), c.site);
    }
    EXPECT_EQ(UrlHelper::site(std::nullopt), std::nullopt);
}

TEST(UrlHelper, IsBlank)
{
    struct Case {
        std::optional<std::string_view> url;
        bool blank;
    };
    for (const Case& c : std::vector<Case> {
             { std::nullopt, true },
             { "", true },
             { " \n", true },
             { "about:blank", true },
             { "ABOUT:Blank", true },
             { "about:blank#x", false },
             { "https://a.example/", false },
         }) {
        SCOPED_TRACE(std::string(c.url.value_or("(none)")));
        EXPECT_EQ(UrlHelper::isBlank(c.url), c.blank);
    }
}
