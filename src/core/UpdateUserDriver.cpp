#include "core/UpdateUserDriver.h"

#include "core/AppInfo.h"
#include "core/UpdateController.h"
#include "core/Vault.h"

namespace velder {

void UpdateUserDriver::showUpdateFound(const AppcastItem& item, const UpdateReply& reply)
{
    if (Vault::shared().snapshot()->updateApplyFailed == item.displayVersionString()) {
        reply(UpdateChoice::dismiss);
        return;
    }
    m_stagedVersionName = item.displayVersionString();
    reply(UpdateChoice::install);
}

void UpdateUserDriver::showUpdateNotFound(const std::function<void()>& acknowledgement)
{
    if (m_controller.currentCheckIsManual()) {
        m_controller.report("No updates", "Velder " + AppInfo::version() + " is the latest version.");
    }
    acknowledgement();
}

void UpdateUserDriver::showUpdaterError(const std::string& description, const std::function<void()>& acknowledgement)
{
    if (m_controller.currentCheckIsManual()) {
        m_controller.report("Could not check for updates", description);
    }
    acknowledgement();
}

void UpdateUserDriver::showReady(UpdateReply reply)
{
    m_controller.stage(m_stagedVersionName, std::move(reply));
}

void UpdateUserDriver::showUpdateInstalledAndRelaunched(const std::function<void()>& acknowledgement)
{
    acknowledgement();
}

} // namespace velder
