#include "support/ScopedStores.h"

#include "core/AppInfo.h"

#include <filesystem>

namespace velder::test {

ScopedStores::ScopedStores(std::function<Date()> faviconClock)
{
    std::filesystem::create_directories(AppInfo::dataDirectory());
    m_vault = std::make_shared<Vault>(AppInfo::vaultFile(), testDataKey());
    Vault::setShared(m_vault);
    m_favicons = std::make_shared<FaviconStore>(AppInfo::faviconFile(), testDataKey(), std::move(faviconClock));
    FaviconStore::setShared(m_favicons);
    m_history = std::make_shared<HistoryStore>(AppInfo::historyFile(), testDataKey());
    HistoryStore::setShared(m_history);
}

ScopedStores::~ScopedStores()
{
    HistoryStore::setShared(nullptr);
    FaviconStore::setShared(nullptr);
    Vault::setShared(nullptr);
}

void ScopedStores::reloadHistory()
{
    m_history->flushNow();
    m_history = std::make_shared<HistoryStore>(AppInfo::historyFile(), testDataKey());
    HistoryStore::setShared(m_history);
}

void ScopedStores::setSettings(const std::function<void(AppSettings&)>& change)
{
    m_vault->update([&](VaultData& data) { change(data.settings); });
}

} // namespace velder::test
