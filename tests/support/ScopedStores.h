#pragma once

#include "core/FaviconStore.h"
#include "core/HistoryStore.h"
#include "core/Vault.h"
#include "support/TestSupport.h"

#include <functional>
#include <memory>

namespace velder::test {

// A profile of its own with fresh shared stores (vault, history, favicons) sealed with the test key,
// so that code reaching for the shared instances meets these. Everything is put back when it goes.
class ScopedStores {
public:
    explicit ScopedStores(std::function<Date()> faviconClock = velder::now);
    ~ScopedStores();
    ScopedStores(const ScopedStores&) = delete;
    ScopedStores& operator=(const ScopedStores&) = delete;

    const TestProfile& profile() const { return m_profile; }
    Vault& vault() { return *m_vault; }
    HistoryStore& history() { return *m_history; }
    FaviconStore& favicons() { return *m_favicons; }

    // Replaces the history store with one loaded again from its file (after a flush).
    void reloadHistory();
    void setSettings(const std::function<void(AppSettings&)>& change);

private:
    TestProfile m_profile;
    std::shared_ptr<Vault> m_vault;
    std::shared_ptr<FaviconStore> m_favicons;
    std::shared_ptr<HistoryStore> m_history;
};

} // namespace velder::test
