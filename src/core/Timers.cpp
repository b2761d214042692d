#include "core/Timers.h"

#include <glib.h>
#include <map>
#include <memory>

namespace velder {

namespace {

class MainLoopTimers final : public Timers {
public:
    Id schedule(Duration delay, bool repeats, std::function<void()> work) override
    {
        Id id = ++m_last;
        auto* entry = new Entry { this, id, repeats, std::move(work) };
        guint source = g_timeout_add_full(G_PRIORITY_DEFAULT, static_cast<guint>(delay.count()), fire, entry,
            [](gpointer data) { delete static_cast<Entry*>(data); });
        m_sources[id] = source;
        return id;
    }

    void cancel(Id timer) override
    {
        if (auto it = m_sources.find(timer); it != m_sources.end()) {
            guint source = it->second;
            m_sources.erase(it);
            g_source_remove(source);
        }
    }

private:
    struct Entry {
        MainLoopTimers* owner;
        Id id;
        bool repeats;
        std::function<void()> work;
    };

    static gboolean fire(gpointer data)
    {
        auto* entry = static_cast<Entry*>(data);
        if (!entry->repeats) {
            entry->owner->m_sources.erase(entry->id); // the source goes when this returns
        }
        // A copy: the work may cancel its own timer, which destroys the entry.
        bool repeats = entry->repeats;
        auto work = entry->work;
        work();
        return repeats ? G_SOURCE_CONTINUE : G_SOURCE_REMOVE;
    }

    Id m_last = 0;
    std::map<Id, guint> m_sources;
};

} // namespace

Timers& Timers::mainLoop()
{
    static Timers& timers = *new MainLoopTimers();
    return timers;
}

} // namespace velder
