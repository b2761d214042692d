#include "core/TopSites.h"

#include "core/HistoryStore.h"
#include "core/Text.h"
#include "core/UrlComponents.h"
#include "core/Vault.h"

#include <algorithm>
#include <glib.h>
#include <unordered_map>
#include <unordered_set>

namespace velder::TopSites {

namespace {

// The site key of a history address, into `key`; false for addresses that aren't http or https.
bool siteKeyOf(std::string_view url, std::string& key)
{
    auto parts = UrlComponents::parse(url);
    if (!parts || !parts->host) {
        return false;
    }
    if (!Text::asciiEqualsIgnoringCase(parts->scheme, "http")
        && !Text::asciiEqualsIgnoringCase(parts->scheme, "https")) {
        return false;
    }
    if (Text::isAscii(*parts->host)) {
        key.assign(*parts->host);
        for (char& c : key) {
            c = Text::asciiLower(c);
        }
    } else {
        key = Text::lowercased(*parts->host);
    }
    if (key.starts_with("www.")) {
        key.erase(0, 4);
    }
    return !key.empty();
}

} // namespace

double score(const TopSite& site, Date now)
{
    double days = secondsBetween(site.lastVisitUtc, now) / 86400;
    double factor = days < 1 ? 4 : days < 7 ? 2 : days < 30 ? 1 : 0.5;
    return factor * static_cast<double>(site.visits);
}

std::vector<TopSite> fromHistory()
{
    std::vector<TopSite> sites;
    std::vector<std::int64_t> bestCounts; // the highest single-entry count of each site
    std::unordered_map<std::string, size_t> positions;
    std::string key;
    // A digest under the history's lock: only what a site keeps is copied, not every entry.
    HistoryStore::shared().forEachEntry([&](const HistoryEntry& entry) {
        if (!siteKeyOf(entry.url, key)) {
            return;
        }
        auto found = positions.find(key);
        if (found == positions.end()) {
            positions.emplace(key, sites.size());
            sites.push_back({ key, entry.url, entry.title, entry.visitCount, entry.lastVisitUtc, false });
            bestCounts.push_back(entry.visitCount);
            return;
        }
        TopSite& site = sites[found->second];
        site.visits += entry.visitCount;
        site.lastVisitUtc = std::max(site.lastVisitUtc, entry.lastVisitUtc);
        // A tile opens its site's most visited page; of pages that tie, the most recently visited.
        if (entry.visitCount > bestCounts[found->second]) {
            bestCounts[found->second] = entry.visitCount;
            site.url = entry.url;
            site.title = entry.title;
        }
    });
    // One clock reading for the whole sort keeps the order consistent.
    Date now = velder::now();
    std::vector<std::pair<double, size_t>> scored;
    scored.reserve(sites.size());
    for (size_t i = 0; i < sites.size(); ++i) {
        scored.emplace_back(score(sites[i], now), i);
    }
    std::stable_sort(scored.begin(), scored.end(), [&](const auto& a, const auto& b) {
        if (a.first != b.first) {
            return a.first > b.first;
        }
        return sites[a.second].lastVisitUtc > sites[b.second].lastVisitUtc;
    });
    std::vector<TopSite> ranked;
    ranked.reserve(sites.size());
    for (auto& [value, index] : scored) {
        ranked.push_back(std::move(sites[index]));
    }
    return ranked;
}

std::vector<TopSite> current()
{
    std::vector<TopSite> ranked = fromHistory();
    std::unordered_map<std::string_view, const TopSite*> bySite;
    for (const auto& site : ranked) {
        bySite.emplace(site.site, &site);
    }
    auto snapshot = Vault::shared().snapshot();
    std::unordered_set<std::string_view> ignored(snapshot->dashboardIgnored.begin(), snapshot->dashboardIgnored.end());

    std::vector<TopSite> result;
    std::unordered_set<std::string> seen;
    for (const auto& pin : snapshot->dashboardPins) {
        if (pin.site.empty() || !seen.insert(pin.site).second) {
            continue;
        }
        auto found = bySite.find(pin.site);
        const TopSite* history = found == bySite.end() ? nullptr : found->second;
        TopSite tile;
        tile.site = pin.site;
        tile.url = !pin.url.empty() ? pin.url : history ? history->url : std::string();
        if (pin.title && !pin.title->empty()) {
            tile.title = pin.title;
        } else if (history) {
            tile.title = history->title;
        }
        tile.visits = history ? history->visits : 0;
        tile.lastVisitUtc = history ? history->lastVisitUtc : distantPast();
        tile.pinned = true;
        result.push_back(std::move(tile));
    }
    // Ignored sites are left out of the ranked part only: a pin shows even when its site is ignored.
    for (auto& site : ranked) {
        if (result.size() > maxTiles - 1) {
            break;
        }
        if (ignored.contains(site.site) || !seen.insert(site.site).second) {
            continue;
        }
        result.push_back(std::move(site));
    }
    return result;
}

std::optional<std::string> normalise(std::optional<std::string_view> text)
{
    std::string key = Text::lowercased(Text::trimmed(text.value_or(std::string_view())));
    if (key.empty() || g_utf8_strlen(key.data(), static_cast<gssize>(key.size())) > static_cast<glong>(maxSiteLength)) {
        return std::nullopt;
    }
    return key;
}

void pin(std::optional<std::string_view> text)
{
    auto site = normalise(text);
    if (!site) {
        return;
    }
    std::vector<TopSite> ranked = fromHistory();
    auto found = std::find_if(ranked.begin(), ranked.end(), [&](const TopSite& s) { return s.site == *site; });
    if (found == ranked.end() || found->url.empty()) {
        return; // only a site with history can be pinned, so a stale link does nothing
    }
    DashboardPin pinned { *site, found->url, found->title };
    Vault::shared().update([&](VaultData& data) {
        std::erase(data.dashboardIgnored, *site);
        auto existing = std::find_if(data.dashboardPins.begin(), data.dashboardPins.end(),
            [&](const DashboardPin& p) { return p.site == *site; });
        if (existing != data.dashboardPins.end()) {
            existing->url = pinned.url;
            existing->title = pinned.title;
        } else if (data.dashboardPins.size() < maxPins) {
            data.dashboardPins.push_back(pinned);
        }
    });
}

void unpin(std::optional<std::string_view> text)
{
    auto site = normalise(text);
    if (!site) {
        return;
    }
    Vault::shared().update([&](VaultData& data) {
        std::erase_if(data.dashboardPins, [&](const DashboardPin& p) { return p.site == *site; });
    });
}

void ignore(std::optional<std::string_view> text)
{
    auto site = normalise(text);
    if (!site) {
        return;
    }
    Vault::shared().update([&](VaultData& data) {
        std::erase_if(data.dashboardPins, [&](const DashboardPin& p) { return p.site == *site; });
        auto& ignored = data.dashboardIgnored;
        if (std::find(ignored.begin(), ignored.end(), *site) == ignored.end()) {
            ignored.push_back(*site);
        }
        if (ignored.size() > maxIgnored) {
            ignored.erase(ignored.begin(), ignored.end() - static_cast<std::ptrdiff_t>(maxIgnored));
        }
    });
}

void restoreIgnored()
{
    Vault::shared().update([](VaultData& data) { data.dashboardIgnored.clear(); });
}

} // namespace velder::TopSites
