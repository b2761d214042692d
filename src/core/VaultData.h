#pragma once

#include "core/AppSettings.h"
#include "core/DashboardPin.h"
#include "core/Date.h"
#include "core/WindowSession.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace velder {

// Everything the vault keeps: settings and the small durable state of the other subsystems.
struct VaultData {
    AppSettings settings;
    std::int64_t settingsVersion = 1;
    std::vector<WindowSession> windows; // the last session
    std::map<std::string, bool> locationSites; // origin -> allowed (true) or blocked (false)
    std::vector<DashboardPin> dashboardPins; // in pinning order
    std::vector<std::string> dashboardIgnored; // site keys, oldest first
    double currentZoomLevel = 0;
    std::optional<Date> lastUpdateCheckUtc;
    std::optional<std::string> updateApplyAttempted;
    std::optional<std::string> updateApplyFailed;

    bool operator==(const VaultData&) const = default;
};

void encodeJson(const VaultData&, JsonObjectOut&);
void decodeJson(const JsonObjectIn&, VaultData&);

} // namespace velder
