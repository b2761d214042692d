#pragma once

#include "core/DebouncedFlush.h"
#include "core/SecureJsonFile.h"
#include "core/VaultData.h"

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>

namespace velder {

// The program's one store of settings and small durable state, written to "vault.bin" about two
// seconds after the last change. Readers take an immutable snapshot; every change goes through update().
//
// Thread safety: any thread may call snapshot() and update(); the file is written on the vault's own
// queue ("local.velder.vault-flush"), outside the lock.
class Vault {
public:
    static constexpr std::chrono::milliseconds debounce { 2000 };
    static constexpr const char* settingsDidChangeNotification = "Velder.settingsDidChange";

    // The one instance, made on first use from AppInfo::vaultFile(), loading the file on that thread.
    static Vault& shared();
    // Puts another instance in place of the shared one (tests, and a profile chosen at start).
    static void setShared(std::shared_ptr<Vault> vault);

    // Loads the file, clamps maxHistory and sets settingsVersion to 1; nothing is written until a change.
    // `flushClock` times the debounce (tests move a ManualClock); it must outlive the vault.
    explicit Vault(
        std::string path, std::optional<SymmetricKey> key = KeychainKey::shared(), Clock& flushClock = Clock::steady());

    // The current record. Cheap: the record is shared and never changed in place, so a snapshot costs
    // one reference count and stays consistent however the vault changes later.
    std::shared_ptr<const VaultData> snapshot() const;

    // Runs the change on a working copy under the lock (it must not call back into the vault). If the
    // record changed, it replaces the live one and a write is scheduled; if the settings changed,
    // "Velder.settingsDidChange" is posted on the calling thread after the lock is released.
    void update(const std::function<void(VaultData&)>& change);

    // Writes pending changes now, on the vault's queue, and waits.
    void flushNow();

private:
    void writeIfDirty();

    SecureJsonFile<VaultData> m_file;
    mutable std::mutex m_lock;
    std::shared_ptr<const VaultData> m_data; // guarded by m_lock
    bool m_isDirty = false; // guarded by m_lock
    DebouncedFlush m_flush; // last: its queue ends before the state above goes
};

} // namespace velder
