#pragma once

#include "core/DebouncedFlush.h"
#include "core/FaviconData.h"
#include "core/SecureJsonFile.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>

namespace velder {

// One icon per site for the dashboard's tiles, checked to be an image by its bytes, kept in
// "favicons.bin" and handed out as a data: URI. At most 200 sites; an icon is refetched after 14 days.
//
// Thread safety: any thread; the file is written on "local.velder.favicon-flush" outside the lock.
class FaviconStore {
public:
    static constexpr std::size_t maxEntries = 200;
    static constexpr std::size_t maxBytes = 65536;
    static constexpr std::chrono::seconds staleAfter { 1209600 };
    static constexpr std::chrono::milliseconds debounce { 2500 };

    static FaviconStore& shared(); // made on first use from AppInfo::faviconFile()
    static void setShared(std::shared_ptr<FaviconStore> store); // tests

    // Loads the file, drops entries without a site or data, and trims; none of that is written by itself.
    // `clock` gives the date an icon is fetched at and `flushClock` times the debounce (tests move both;
    // the latter must outlive the store).
    explicit FaviconStore(std::string path, std::optional<SymmetricKey> key = KeychainKey::shared(),
        std::function<Date()> clock = velder::now, Clock& flushClock = Clock::steady());

    // Whether a fetch is wanted: no icon yet, or one older than 14 days.
    bool needs(const std::string& site) const;
    // Keeps an icon; false when refused (no site, no bytes, too many bytes, not a known image type).
    bool store(std::span<const std::uint8_t> bytes, const std::string& site);
    // "data:<mime>;base64,<data>", stale or not; nothing without an icon.
    std::optional<std::string> dataUri(const std::string& site) const;
    void clear();
    // Writes pending changes now and waits. Quit doesn't call it: a lost icon is fetched again.
    void flushNow();

    std::size_t count() const;
    std::optional<FaviconEntry> entry(const std::string& site) const;

    // The image type by the first bytes: PNG, ICO, JPEG, GIF, WebP, BMP; nothing for anything else (SVG too).
    static std::optional<std::string> sniff(std::span<const std::uint8_t> bytes);

private:
    void trim(); // with m_lock held
    void writeIfDirty();

    SecureJsonFile<FaviconData> m_file;
    std::function<Date()> m_clock;
    mutable std::mutex m_lock;
    std::map<std::string, FaviconEntry> m_icons; // guarded by m_lock
    bool m_isDirty = false; // guarded by m_lock
    DebouncedFlush m_flush; // last: its queue ends before the state above goes
};

} // namespace velder
