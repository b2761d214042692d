#include "core/DashboardPage.h"

#include "core/FaviconStore.h"
#include "core/Html.h"
#include "core/PageShell.h"
#include "core/Text.h"
#include "core/TopSites.h"
#include "core/Vault.h"

#include <ctime>

namespace velder::DashboardPage {

namespace {

std::string localDate(Date date)
{
    std::time_t seconds = std::chrono::system_clock::to_time_t(date);
    std::tm local {};
    localtime_r(&seconds, &local);
    char text[32];
    size_t length = std::strftime(text, sizeof text, "%Y-%m-%d", &local);
    return std::string(text, length);
}

} // namespace

std::string ago(Date then, Date now)
{
    // Whole seconds on each side first: the difference of two far-apart dates overflows the clock's count.
    using std::chrono::floor;
    std::int64_t seconds = floor<std::chrono::seconds>(now).time_since_epoch().count()
        - floor<std::chrono::seconds>(then).time_since_epoch().count();
    if (seconds < 60) {
        return "just now";
    }
    if (seconds < 3600) {
        return std::to_string(seconds / 60) + " min ago";
    }
    if (seconds < 86400) {
        return std::to_string(seconds / 3600) + " hr ago";
    }
    if (seconds < 604800) {
        return std::to_string(seconds / 86400) + " d ago";
    }
    return localDate(then);
}

std::string counts(const TopSite& site, Date now)
{
    if (site.visits < 1) {
        return "Pinned";
    }
    std::string visits = site.visits == 1 ? "1 visit" : std::to_string(site.visits) + " visits";
    return visits + " \xC2\xB7 " + ago(site.lastVisitUtc, now);
}

std::string tile(const TopSite& site, Date now)
{
    std::string enc = Text::percentEncoded(site.site, "");
    std::string html
        = site.pinned ? "<div class=\"tile pinned\"><div class=\"head\">" : "<div class=\"tile\"><div class=\"head\">";
    if (auto icon = FaviconStore::shared().dataUri(site.site)) {
        html += "<img class=\"mark icon\" alt=\"\" src=\"" + Html::escape(*icon) + "\">";
    } else {
        std::string letter = site.site.empty() ? "?" : Text::firstCharacterUppercased(site.site);
        html += "<span class=\"mark\">" + Html::escape(letter) + "</span>";
    }
    html += "<div class=\"acts\">";
    if (site.pinned) {
        html += "<a class=\"act\" href=\"velder://dashboard/?unpin=" + enc
            + "\" title=\"Let this tile move with the rest again\">Unpin</a>";
    } else {
        html += "<a class=\"act\" href=\"velder://dashboard/?pin=" + enc
            + "\" title=\"Keep this tile where it is, whatever history does\">Pin</a>";
    }
    html += "<a class=\"act\" href=\"velder://dashboard/?ignore=" + enc
        + "\" title=\"Never suggest this site here. History keeps it\">Ignore</a>";
    html += "</div></div>";
    std::string url = Html::escape(site.url);
    bool linked = Html::isLinkable(site.url);
    if (linked) {
        html += "<a class=\"face\" href=\"" + url + "\" title=\"" + url + "\">";
    } else {
        html += "<span class=\"face\" title=\"" + url + "\">";
    }
    const std::string& sub = site.title && !site.title->empty() ? *site.title : site.site;
    html += "<span class=\"name\">" + Html::escape(site.site) + "</span><span class=\"sub\">" + Html::escape(sub)
        + "</span>";
    html += linked ? "</a>" : "</span>";
    html += "<span class=\"meta\">" + Html::escape(counts(site, now)) + "</span></div>";
    return html;
}

std::string render()
{
    std::vector<TopSite> sites = TopSites::current();
    size_t ignoredCount = Vault::shared().snapshot()->dashboardIgnored.size();
    Date now = velder::now();

    std::string body;
    if (!sites.empty()) {
        body += "<div class=\"tiles\">";
        for (const auto& site : sites) {
            body += tile(site, now);
        }
        body += "</div>";
    } else {
        body += "<p class=\"empty\">Nothing to show yet. Sites you visit become tiles here, newest and most-used "
                "first \xE2\x80\x94 pin the ones worth keeping, ignore the ones that are not.</p>";
    }
    if (ignoredCount != 0) {
        body += "<div class=\"actions\"><span class=\"note\">";
        body += ignoredCount == 1 ? std::string("1 site is ignored.")
                                  : std::to_string(ignoredCount) + " sites are ignored.";
        body += "</span><a class=\"act\" href=\"velder://dashboard/?restore=1\" title=\"Let every ignored site be "
                "suggested again\">Show them again</a></div>";
    }
    return PageShell::render("Dashboard", "Dashboard", PageShell::nav(InternalRoute::dashboard), body);
}

} // namespace velder::DashboardPage
