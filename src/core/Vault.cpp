#include "core/Vault.h"

#include "core/AppInfo.h"
#include "core/NotificationCenter.h"
#include "core/SharedInstance.h"

#include <algorithm>

namespace velder {

namespace {

using Shared = SharedInstance<Vault, AppInfo::vaultFile>;

void clampMaxHistory(VaultData& data)
{
    data.settings.maxHistory = std::clamp<std::int64_t>(data.settings.maxHistory, 0, AppSettings::maxHistoryLimit);
}

} // namespace

Vault& Vault::shared()
{
    return Shared::get();
}

void Vault::setShared(std::shared_ptr<Vault> vault)
{
    Shared::set(std::move(vault));
}

Vault::Vault(std::string path, std::optional<SymmetricKey> key, Clock& flushClock)
    : m_file(std::move(path), std::move(key))
    , m_flush(
          "local.velder.vault-flush", debounce, [this] { writeIfDirty(); }, flushClock)
{
    VaultData data = m_file.load(VaultData());
    clampMaxHistory(data);
    data.settingsVersion = 1;
    m_data = std::make_shared<const VaultData>(std::move(data));
}

std::shared_ptr<const VaultData> Vault::snapshot() const
{
    std::lock_guard lock(m_lock);
    return m_data;
}

void Vault::update(const std::function<void(VaultData&)>& change)
{
    bool changed = false;
    bool settingsChanged = false;
    {
        std::lock_guard lock(m_lock);
        VaultData working = *m_data;
        change(working);
        clampMaxHistory(working);
        changed = !(working == *m_data);
        settingsChanged = !(working.settings == m_data->settings);
        if (changed) {
            m_data = std::make_shared<const VaultData>(std::move(working));
            m_isDirty = true;
        }
    }
    if (changed) {
        m_flush.schedule();
    }
    if (settingsChanged) {
        NotificationCenter::defaultCenter().post(settingsDidChangeNotification);
    }
}

void Vault::flushNow()
{
    m_flush.flushNow();
}

void Vault::writeIfDirty()
{
    std::shared_ptr<const VaultData> copy;
    {
        std::lock_guard lock(m_lock);
        if (!m_isDirty) {
            return;
        }
        copy = m_data;
        m_isDirty = false;
    }
    if (!m_file.save(*copy)) {
        std::lock_guard lock(m_lock);
        m_isDirty = true;
    }
}

} // namespace velder
