#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <vector>

namespace velder {

// The order of a window's tabs and which one is active, apart from anything drawn: the window asks it where
// a tab goes and which tab to show after a change. `Tab` is a handle compared by ==, such as a shared pointer.
//
// The active tab stays the active one whatever happens to the others; only its own closing hands the
// activity on, to the tab that takes its place (or the new last one).
template<class Tab> class TabModel {
public:
    const std::vector<Tab>& tabs() const { return m_tabs; }
    std::size_t size() const { return m_tabs.size(); }
    bool empty() const { return m_tabs.empty(); }
    const Tab& operator[](std::size_t index) const { return m_tabs[index]; }

    // 0 when there are no tabs.
    std::size_t activeIndex() const { return m_active; }
    std::optional<Tab> active() const
    {
        return m_active < m_tabs.size() ? std::optional<Tab>(m_tabs[m_active]) : std::nullopt;
    }

    std::optional<std::size_t> indexOf(const Tab& tab) const
    {
        auto found = std::find(m_tabs.begin(), m_tabs.end(), tab);
        return found == m_tabs.end() ? std::nullopt : std::optional(static_cast<std::size_t>(found - m_tabs.begin()));
    }
    bool contains(const Tab& tab) const { return indexOf(tab).has_value(); }

    // Appends the tab; it becomes active when asked to, or when it is the only one. Returns its index.
    std::size_t append(Tab tab, bool activate)
    {
        m_tabs.push_back(std::move(tab));
        if (activate || m_tabs.size() == 1) {
            m_active = m_tabs.size() - 1;
        }
        return m_tabs.size() - 1;
    }

    bool select(std::size_t index)
    {
        if (index >= m_tabs.size()) {
            return false;
        }
        m_active = index;
        return true;
    }

    // Removes the tab; false if it isn't here. The active tab keeps its activity unless it was the one removed.
    bool remove(const Tab& tab)
    {
        auto index = indexOf(tab);
        if (!index) {
            return false;
        }
        m_tabs.erase(m_tabs.begin() + static_cast<std::ptrdiff_t>(*index));
        if (*index < m_active) {
            --m_active;
        } else if (*index == m_active) {
            m_active = std::min(m_active, m_tabs.empty() ? 0 : m_tabs.size() - 1);
        }
        return true;
    }

    // Moves a tab to another place; the active tab stays active.
    bool move(std::size_t from, std::size_t to)
    {
        if (from >= m_tabs.size() || to >= m_tabs.size() || from == to) {
            return false;
        }
        Tab tab = std::move(m_tabs[from]);
        m_tabs.erase(m_tabs.begin() + static_cast<std::ptrdiff_t>(from));
        m_tabs.insert(m_tabs.begin() + static_cast<std::ptrdiff_t>(to), std::move(tab));
        if (m_active == from) {
            m_active = to;
        } else if (from < m_active && m_active <= to) {
            --m_active;
        } else if (to <= m_active && m_active < from) {
            ++m_active;
        }
        return true;
    }

    // Neighbours of the active tab, wrapping round.
    std::size_t nextIndex() const { return m_tabs.empty() ? 0 : (m_active + 1) % m_tabs.size(); }
    std::size_t previousIndex() const { return m_tabs.empty() ? 0 : (m_active + m_tabs.size() - 1) % m_tabs.size(); }

    // The tabs after `index`, in order, and every tab but the one at `index`: what the tab menu closes.
    std::vector<Tab> tabsAfter(std::size_t index) const
    {
        return index < m_tabs.size()
            ? std::vector<Tab>(m_tabs.begin() + static_cast<std::ptrdiff_t>(index) + 1, m_tabs.end())
            : std::vector<Tab>();
    }
    std::vector<Tab> tabsOtherThan(std::size_t index) const
    {
        std::vector<Tab> result;
        for (std::size_t i = 0; i < m_tabs.size(); ++i) {
            if (i != index) {
                result.push_back(m_tabs[i]);
            }
        }
        return result;
    }

private:
    std::vector<Tab> m_tabs;
    std::size_t m_active = 0;
};

} // namespace velder
