#include "core/NotificationCenter.h"

#include <algorithm>
#include <atomic>

namespace velder {

struct NotificationCenter::Token::Entry {
    std::string name;
    Observer observer;
    std::atomic<bool> removed { false };
};

NotificationCenter::Token::Token(NotificationCenter* center, std::shared_ptr<Entry> entry)
    : m_center(center)
    , m_entry(std::move(entry))
{
}

NotificationCenter::Token& NotificationCenter::Token::operator=(Token&& other) noexcept
{
    if (this != &other) {
        remove();
        m_center = other.m_center;
        m_entry = std::move(other.m_entry);
    }
    return *this;
}

NotificationCenter::Token::~Token()
{
    remove();
}

void NotificationCenter::Token::remove()
{
    if (!m_entry) {
        return;
    }
    {
        std::lock_guard lock(m_center->m_mutex);
        auto& entries = m_center->m_entries;
        entries.erase(std::remove(entries.begin(), entries.end(), m_entry), entries.end());
    }
    m_entry->removed = true;
    m_entry.reset();
}

NotificationCenter& NotificationCenter::defaultCenter()
{
    static auto* center = new NotificationCenter();
    return *center;
}

NotificationCenter::Token NotificationCenter::addObserver(std::string name, Observer observer)
{
    auto entry = std::make_shared<Token::Entry>();
    entry->name = std::move(name);
    entry->observer = std::move(observer);
    std::lock_guard lock(m_mutex);
    m_entries.push_back(entry);
    return Token(this, entry);
}

void NotificationCenter::post(const Notification& notification)
{
    std::vector<std::shared_ptr<Token::Entry>> targets;
    {
        std::lock_guard lock(m_mutex);
        for (auto& entry : m_entries) {
            if (entry->name == notification.name) {
                targets.push_back(entry);
            }
        }
    }
    for (auto& entry : targets) {
        if (entry->removed) {
            continue;
        }
        entry->observer(notification);
    }
}

} // namespace velder
