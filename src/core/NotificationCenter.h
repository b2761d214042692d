#pragma once

#include "core/Notification.h"

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace velder {

// Process-wide named notifications ("Velder.settingsDidChange", "Velder.themeDidChange", ...).
// post() calls the observers synchronously on the posting thread, outside any lock of the center;
// a removed token stops later calls (a call already running on another thread finishes);
// observers that want the main thread hop there themselves.
class NotificationCenter {
public:
    using Observer = std::function<void(const Notification&)>;

    // Removes its observer when destroyed; no call reaches the observer after that.
    class Token {
    public:
        Token() = default;
        Token(Token&&) noexcept = default;
        Token& operator=(Token&& other) noexcept;
        ~Token();
        void remove();
        explicit operator bool() const { return static_cast<bool>(m_entry); }

    private:
        friend class NotificationCenter;
        struct Entry;
        Token(NotificationCenter* center, std::shared_ptr<Entry> entry);
        NotificationCenter* m_center = nullptr;
        std::shared_ptr<Entry> m_entry;
    };

    static NotificationCenter& defaultCenter();

    [[nodiscard]] Token addObserver(std::string name, Observer observer);
    void post(const Notification& notification);
    void post(const std::string& name) { post(Notification { name, nullptr, {} }); }

private:
    std::mutex m_mutex;
    std::vector<std::shared_ptr<Token::Entry>> m_entries;
};

} // namespace velder
