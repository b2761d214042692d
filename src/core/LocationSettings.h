#pragma once

#include "core/LocationAnswer.h"
#include "core/LocationMirror.h"
#include "core/NotificationCenter.h"

#include <memory>
#include <optional>
#include <set>
#include <string>

namespace velder {

// What site answers mean, where they live and how they reach the engine. The vault's "locationSites" is the
// truth; the engine's own store is a mirror the program only ever writes. A private window keeps nothing in
// the vault: its answers live in the private session and in the tab. Main thread only.
class LocationSettings {
public:
    static LocationSettings& shared();

    void setMirror(std::shared_ptr<LocationMirror> mirror);

    // ask when the global switch is off, whatever is stored; else the stored answer, ask without one.
    LocationAnswer effective(const std::string& origin) const;
    void store(LocationAnswer answer, const std::string& origin, bool isPrivate);
    // At every address change of a tab: refreshes the mirror for an origin the vault knows.
    void pushMirror(const std::string& url, bool isPrivate);
    void setEnabled(bool enabled);
    void forgetAll();
    void startWatchingTheGlobalSwitch();

    // The ordinary session's mirror of one origin: the engine value of effective(origin).
    void mirrorEffective(const std::string& origin);

    // The private session went away: its origins are forgotten with it.
    void privateSessionEnded() { m_privateMirrorOrigins.clear(); }
    const std::set<std::string>& privateMirrorOrigins() const { return m_privateMirrorOrigins; }

    // A stored allow was mirrored: tell the platform's location service (logged once per run).
    std::function<void()> onMirroredAllow;

private:
    void rewriteMirror(bool forcingAsk);

    std::shared_ptr<LocationMirror> m_mirror;
    std::set<std::string> m_privateMirrorOrigins;
    std::optional<bool> m_lastSeenEnabled;
    NotificationCenter::Token m_switchWatch;
};

} // namespace velder
