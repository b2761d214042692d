#include "core/VaultData.h"

#include "core/VldJson.h"

namespace velder {

void encodeJson(const VaultData& data, JsonObjectOut& out)
{
    out.putRecord("settings", data.settings);
    out.putInt("settingsVersion", data.settingsVersion);
    out.putRecordArray("windows", data.windows);
    out.putBoolMap("locationSites", data.locationSites);
    out.putRecordArray("dashboardPins", data.dashboardPins);
    out.putStringArray("dashboardIgnored", data.dashboardIgnored);
    out.putDouble("currentZoomLevel", data.currentZoomLevel);
    out.putOptionalDate("lastUpdateCheckUtc", data.lastUpdateCheckUtc);
    out.putOptionalString("updateApplyAttempted", data.updateApplyAttempted);
    out.putOptionalString("updateApplyFailed", data.updateApplyFailed);
}

void decodeJson(const JsonObjectIn& in, VaultData& data)
{
    in.record("settings", data.settings);
    data.settingsVersion = in.integer("settingsVersion");
    data.windows = in.recordArray<WindowSession>("windows");
    data.locationSites = in.boolMap("locationSites");
    data.dashboardPins = in.recordArray<DashboardPin>("dashboardPins");
    data.dashboardIgnored = in.stringArray("dashboardIgnored");
    data.currentZoomLevel = in.number("currentZoomLevel");
    data.lastUpdateCheckUtc = in.optionalDate("lastUpdateCheckUtc");
    data.updateApplyAttempted = in.optionalString("updateApplyAttempted");
    data.updateApplyFailed = in.optionalString("updateApplyFailed");
}

} // namespace velder
