#include "core/HistoryPage.h"

#include "core/HistoryStore.h"
#include "core/Html.h"
#include "core/PageShell.h"

#include <algorithm>
#include <ctime>
#include <langinfo.h>

namespace velder::HistoryPage {

namespace {

// The C library has the locale's short date and its clock, but no medium style: the month's name comes
// from the locale, the order of day, month and year from its short date, and a 12-hour clock from its time.
std::string mediumDateFormat()
{
    std::string shortDate = nl_langinfo(D_FMT);
    std::string time = nl_langinfo(T_FMT);
    auto firstOf = [&](std::initializer_list<const char*> codes) {
        size_t best = std::string::npos;
        for (const char* code : codes) {
            best = std::min(best, shortDate.find(code));
        }
        return best;
    };
    size_t day = firstOf({ "%d", "%e" });
    size_t month = firstOf({ "%m", "%b", "%B" });
    size_t year = firstOf({ "%y", "%Y" });
    std::string date;
    if (year < day && year < month) {
        date = "%Y %b %e";
    } else if (month < day) {
        date = "%b %e, %Y";
    } else {
        date = "%e %b %Y";
    }
    bool twelveHour = time.find("%r") != std::string::npos || time.find("%I") != std::string::npos
        || time.find("%l") != std::string::npos;
    return date + (twelveHour ? ", %I:%M %p" : ", %H:%M");
}

std::string collapseBlanks(std::string text)
{
    // %e pads single-digit days with a blank.
    std::string result;
    result.reserve(text.size());
    for (char c : text) {
        if (c == ' ' && (result.empty() || result.back() == ' ')) {
            continue;
        }
        result.push_back(c);
    }
    return result;
}

} // namespace

std::string formatDate(Date date)
{
    static const std::string format = mediumDateFormat();
    std::time_t seconds = std::chrono::system_clock::to_time_t(date);
    std::tm local {};
    localtime_r(&seconds, &local);
    char text[128];
    size_t length = std::strftime(text, sizeof text, format.c_str(), &local);
    return collapseBlanks(std::string(text, length));
}

std::string row(const HistoryEntry& entry)
{
    const std::string& shown = entry.title.empty() ? entry.url : entry.title;
    std::string html = "<tr>\n  <td><span class=\"title\">";
    html += Html::link(entry.url, shown);
    html += "</span><span class=\"url\">";
    Html::appendEscaped(html, entry.url);
    html += "</span></td>\n  <td class=\"when\">";
    Html::appendEscaped(html, formatDate(entry.lastVisitUtc));
    html += "</td>\n  <td class=\"num\">";
    html += std::to_string(entry.visitCount);
    html += "</td>\n</tr>";
    return html;
}

std::string render()
{
    std::vector<HistoryEntry> entries = HistoryStore::shared().entries();
    std::string body;
    if (entries.empty()) {
        body = "<p class=\"empty\">Nothing here yet.</p>";
    } else {
        body = "<form method=\"get\" action=\"velder://history/\" class=\"actions\">\n  <button class=\"danger\" "
               "type=\"submit\" name=\"clear\" value=\"1\">Clear history</button>\n</form>";
        body += "<table>\n  <thead><tr><th>Page</th><th>Last visit</th><th class=\"num\">Visits</th></tr></thead>\n  "
                "<tbody>";
        for (const auto& entry : entries) {
            body += row(entry);
        }
        body += "</tbody>\n</table>";
    }
    return PageShell::render("History", "History", PageShell::nav(InternalRoute::history), body);
}

} // namespace velder::HistoryPage
