#include "core/InternalPages.h"

#include "core/AboutPage.h"
#include "core/DashboardPage.h"
#include "core/FormValues.h"
#include "core/HistoryPage.h"
#include "core/HistoryStore.h"
#include "core/InternalRoute.h"
#include "core/SettingsPage.h"
#include "core/TopSites.h"

namespace velder {

namespace {

// Other tabs showing internal pages reload, so they show the change at once; the requesting tab takes
// its redirect instead. Without a host (at teardown) nothing is refreshed.
void refreshOthers(const InternalPages& pages, std::optional<std::uint64_t> requestingView)
{
    if (auto host = pages.host()) {
        host->refreshInternalPages(requestingView);
    }
}

const std::string dashboardURL = "velder://dashboard/";

std::optional<InternalPageResponse> dashboard(const FormValues& form)
{
    if (auto site = form.string("pin")) {
        TopSites::pin(*site);
    } else if (auto site = form.string("unpin")) {
        TopSites::unpin(*site);
    } else if (auto site = form.string("ignore")) {
        TopSites::ignore(*site);
    } else if (form.flag("restore")) {
        TopSites::restoreIgnored();
    } else {
        return InternalPageResponse::html(DashboardPage::render());
    }
    return InternalPageResponse::redirectTo(dashboardURL);
}

SettingsPage::Notice noticeFrom(const FormValues& form)
{
    if (form.flag("saved")) {
        return SettingsPage::Notice::saved();
    }
    auto done = form.string("done");
    auto action = done ? SettingsPage::maintenanceAction(*done) : std::nullopt;
    if (!action) {
        return SettingsPage::Notice::none();
    }
    switch (*action) {
    case SettingsPage::MaintenanceAction::history:
        return SettingsPage::Notice::done("History cleared.");
    case SettingsPage::MaintenanceAction::browsingData:
        return SettingsPage::Notice::done("Cookies and cache cleared.");
    case SettingsPage::MaintenanceAction::location:
        return SettingsPage::Notice::done("Location answers forgotten.");
    }
    return SettingsPage::Notice::none();
}

} // namespace

InternalPages& InternalPages::shared()
{
    static auto* pages = new InternalPages();
    return *pages;
}

void InternalPages::setHost(std::weak_ptr<InternalPageHost> host)
{
    m_host = std::move(host);
}

std::shared_ptr<InternalPageHost> InternalPages::host() const
{
    return m_host.lock();
}

std::optional<InternalPageResponse> InternalPages::response(
    std::string_view url, std::optional<std::uint64_t> requestingView)
{
    auto parsed = InternalRoutes::parse(url);
    if (!parsed) {
        return std::nullopt;
    }
    FormValues form(parsed->second);
    switch (parsed->first) {
    case InternalRoute::dashboard:
        return dashboard(form);
    case InternalRoute::about:
        return InternalPageResponse::html(AboutPage::render());
    case InternalRoute::settings: {
        auto clear = form.string("clear");
        if (auto action = clear ? SettingsPage::maintenanceAction(*clear) : std::nullopt) {
            std::string target = SettingsPage::performMaintenance(*action, requestingView);
            refreshOthers(*this, requestingView);
            return InternalPageResponse::redirectTo(std::move(target));
        }
        if (form.flag("save")) {
            std::string target = SettingsPage::save(form);
            refreshOthers(*this, requestingView);
            return InternalPageResponse::redirectTo(std::move(target));
        }
        return InternalPageResponse::html(SettingsPage::render(noticeFrom(form), form.flag("confirmarchive")));
    }
    case InternalRoute::history:
        if (form.flag("clear")) {
            HistoryStore::shared().clear();
            refreshOthers(*this, requestingView);
            return InternalPageResponse::redirectTo("velder://history/");
        }
        return InternalPageResponse::html(HistoryPage::render());
    }
    return std::nullopt;
}

} // namespace velder
