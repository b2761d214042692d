#include "core/AppSettings.h"

#include "core/VldJson.h"

namespace velder {

void encodeJson(const AppSettings& settings, JsonObjectOut& out)
{
    out.putString("searchTemplate", settings.searchTemplate);
    out.putString("homepage", settings.homepage);
    out.putString("newTabPage", settings.newTabPage);
    out.putBool("restoreSession", settings.restoreSession);
    out.putBool("archiveOldVersions", settings.archiveOldVersions);
    out.putString("textColor", settings.textColor);
    out.putString("highlightColor", settings.highlightColor);
    out.putString("passiveColor", settings.passiveColor);
    out.putString("fieldColor", settings.fieldColor);
    out.putString("borderColor", settings.borderColor);
    out.putBool("locationEnabled", settings.locationEnabled);
    out.putBool("askWhereToSaveDownloads", settings.askWhereToSaveDownloads);
    out.putInt("maxHistory", settings.maxHistory);
}

void decodeJson(const JsonObjectIn& in, AppSettings& settings)
{
    settings.searchTemplate = in.string("searchTemplate");
    settings.homepage = in.string("homepage");
    settings.newTabPage = in.string("newTabPage");
    settings.restoreSession = in.boolean("restoreSession");
    settings.archiveOldVersions = in.boolean("archiveOldVersions");
    settings.textColor = in.string("textColor");
    settings.highlightColor = in.string("highlightColor");
    settings.passiveColor = in.string("passiveColor");
    settings.fieldColor = in.string("fieldColor");
    settings.borderColor = in.string("borderColor");
    settings.locationEnabled = in.boolean("locationEnabled");
    settings.askWhereToSaveDownloads = in.boolean("askWhereToSaveDownloads");
    settings.maxHistory = in.integer("maxHistory");
}

} // namespace velder
