#include "core/InternalRoute.h"
#include "core/FormValues.h"
#include "core/Html.h"
#include "core/Log.h"
#include "core/PageShell.h"
#include "core/Resources.h"
#include "support/ScopedStores.h"

#include "CoreTestSupport.h"

#include <gtest/gtest.h>

using namespace velder;
using namespace velder::test;

TEST(InternalRoute, Parse)
{
    struct Case {
        const char* url;
        InternalRoute route;
        std::optional<std::string> query;
    };
    for (const Case& c : std::vector<Case> {
             { "velder://dashboard/", InternalRoute::dashboard, std::nullopt },
             { "VELDER://Dashboard/?Pin=A.Example", InternalRoute::dashboard, "Pin=A.Example" },
             { "velder://settings", InternalRoute::settings, std::nullopt },
             { "velder://SETTINGS//", InternalRoute::settings, std::nullopt },
             { "velder://about/?", InternalRoute::about, "" },
             { "velder://history/#top?clear=1", InternalRoute::history, std::nullopt },
             { "velder://history/?clear=1#top", InternalRoute::history, "clear=1" },
             { "velder://history?a=1?b=2", InternalRoute::history, "a=1?b=2" },
         }) {
        SCOPED_TRACE(c.url);
        auto parsed = InternalRoutes::parse(c.url);
        ASSERT_TRUE(parsed);
        EXPECT_EQ(parsed->first, c.route);
        EXPECT_EQ(parsed->second, c.query);
    }
    for (const char* url : { "velder://", "velder:///", "velder://about/extra", "velder://about//x/",
             "velder://downloads/", "velder:about", "https://dashboard/", " velder://about/" }) {
        EXPECT_FALSE(InternalRoutes::parse(url)) << url;
    }
    EXPECT_EQ(InternalRoutes::url(InternalRoute::history), "velder://history/");
    EXPECT_EQ(InternalRoutes::fromRawValue("Settings"), std::nullopt);
}

// "+", escapes, empty values and boxes sent as "0" are read through the settings form in SettingsPageTest.
TEST(FormValues, Parse)
{
    using Pairs = std::vector<std::pair<std::string, std::string>>;
    struct Case {
        std::optional<std::string_view> query;
        Pairs pairs;
    };
    for (const Case& c : std::vector<Case> {
             { std::nullopt, {} },
             { "", {} },
             { "a=1&&b=2&", { { "a", "1" }, { "b", "2" } } },
             { "a", { { "a", "" } } },
             { "a=b=c", { { "a", "b=c" } } },
             { "a=100%", { { "a", "100%" } } },
             { "a=100%+x%2", { { "a", "100% x%2" } } },
             { "a=%FF", { { "a", "%FF" } } }, // not UTF-8 once decoded
             { "a=%C0%AF", { { "a", "%C0%AF" } } }, // an overlong "/"
             { "a=%ED%A0%80", { { "a", "%ED%A0%80" } } }, // a surrogate
             { "a=%F8%88%80%80", { { "a", "%F8%88%80%80" } } }, // a lead byte no sequence has
             { "a=%C3%BC", { { "a", "\xC3\xBC" } } },
             { "x%3Dy=1", { { "x=y", "1" } } },
             { "=v", { { "", "v" } } },
             { "a=1&a=2", { { "a", "1" }, { "a", "2" } } },
         }) {
        SCOPED_TRACE(std::string(c.query.value_or("(none)")));
        EXPECT_EQ(FormValues(c.query).pairs, c.pairs);
    }
    FormValues form("a=1&a=2&empty=&zero=0&flag");
    EXPECT_EQ(form.string("a"), "1");
    EXPECT_EQ(form.string("A"), std::nullopt);
    EXPECT_TRUE(form.flag("empty"));
    EXPECT_TRUE(form.flag("flag"));
    EXPECT_FALSE(form.flag("Flag"));
}

TEST(Html, EscapeAndLink)
{
    EXPECT_EQ(
        Html::escape("<a href=\"x\">Tom & Jerry's</a>"), "&lt;a href=&quot;x&quot;&gt;Tom &amp; Jerry&#39;s&lt;/a&gt;");
    EXPECT_EQ(Html::escape("&amp; \xC3\xBC {{BODY}}"), "&amp;amp; \xC3\xBC {{BODY}}");
    struct Case {
        const char* url;
        const char* text;
        const char* html;
    };
    for (const Case& c : std::vector<Case> {
             { "https://a.example/?q=1&r=<2>", "A & B",
                 "<a href=\"https://a.example/?q=1&amp;r=&lt;2&gt;\">A &amp; B</a>" },
             { "HTTP://a.example/", "a", "<a href=\"HTTP://a.example/\">a</a>" },
             { "velder://history/", "History", "<a href=\"velder://history/\">History</a>" },
             { "javascript:alert(1)", "<click>", "&lt;click&gt;" },
             { "JavaScript:alert(1)", "x", "x" },
             { "file:///etc/passwd", "passwd", "passwd" },
             { "data:text/html,<b>", "d", "d" },
             { "no scheme at all", "plain", "plain" },
             { "\" onclick=\"x", "q", "q" },
         }) {
        SCOPED_TRACE(c.url);
        EXPECT_EQ(Html::link(c.url, c.text), c.html);
    }
}

TEST(PageShell, AMissingOrBrokenTemplateFallsBackWithOneLine)
{
    const std::string line = "Velder: shell.html is missing from the bundle. Internal pages will render unstyled.";
    for (auto resource :
        std::vector<std::optional<std::string_view>> { std::nullopt, std::string_view("\xFF\xFE bad") }) {
        SCOPED_TRACE(resource ? "not UTF-8" : "missing");
        LogCapture log;
        std::string fallback = PageShell::templateFrom(resource);
        for (const char* placeholder : { "{{TITLE}}", "{{HEADING}}", "{{NAV}}", "{{BODY}}" }) {
            EXPECT_NE(fallback.find(placeholder), std::string::npos) << placeholder;
        }
        EXPECT_EQ(fallback.find("\xFF"), std::string::npos);
        EXPECT_EQ(log.lines(), std::vector<std::string> { line });
    }
    LogCapture log;
    EXPECT_EQ(PageShell::templateFrom(std::string_view("<p>{{BODY}}</p>")), "<p>{{BODY}}</p>");
    EXPECT_TRUE(log.lines().empty());
}

TEST(PageShell, TheCompiledInTemplateLoadsNothingFromOutside)
{
    auto resource = Resources::lookup("shell.html");
    ASSERT_TRUE(resource);
    EXPECT_EQ(PageShell::templateText(), *resource);
    // Nothing loads from outside: no remote stylesheets, fonts or images.
    for (const char* remote : { "http:", "https:", "@import", "url(", "<link", "<script" }) {
        SCOPED_TRACE(remote);
        EXPECT_EQ(resource->find(remote), std::string_view::npos);
    }
}

TEST(PageShell, NavAndRender)
{
    EXPECT_EQ(PageShell::nav(InternalRoute::settings),
        "<a href=\"velder://dashboard/\">Dashboard</a><a href=\"velder://about/\">About</a><span>Settings</span>"
        "<a href=\"velder://history/\">History</a>");
    EXPECT_EQ(PageShell::nav(std::nullopt).find("<span>"), std::string::npos);

    ScopedStores stores;
    stores.setSettings([](AppSettings& s) {
        s.textColor = "cyan";
        s.fieldColor = "white";
        s.highlightColor = "yellow";
        s.passiveColor = "blue";
    });
    std::string page = PageShell::render("<T>", "H & h", "<nav-html>", "{{TITLE}} {{FG}} <b>body</b>");
    expectParts(page,
        { "<title>&lt;T&gt;</title>", "<h1>H &amp; h</h1>", "<nav><nav-html></nav>", "{{TITLE}} {{FG}} <b>body</b>",
            // cyan #c0ffff on white fails the contrast rule: the panel's text turns black; yellow takes black on it.
            "background: #ffffff", "color: #000000", "background: #d8c840", "color: #5a9bea",
            "#c0ffff", // FG itself stays the chosen colour
            "#d6ffff" }); // FG_LIT is FG lifted by 0.35
    EXPECT_EQ(page.find("{{"), page.find("{{TITLE}} {{FG}}")) << "no placeholder is left outside the body";

    std::string withHead = PageShell::render("t", "h", "", "", "<meta name=\"x\">");
    EXPECT_NE(withHead.find("<head><meta name=\"x\">"), std::string::npos);
}
