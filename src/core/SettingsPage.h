#pragma once

#include "core/FormValues.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velder {

// velder://settings/: one form over the settings that saves on every change (a GET of the whole form,
// answered with a redirect), and the maintenance buttons. Main thread.
namespace SettingsPage {

enum class MaintenanceAction { history, browsingData, location };
std::string_view rawValue(MaintenanceAction action); // "history", "browsingdata", "location"
std::optional<MaintenanceAction> maintenanceAction(std::string_view rawValue);

// The banner over the form: nothing, "Saved.", or what a maintenance action did.
struct Notice {
    enum class Kind { none, saved, done };
    Kind kind = Kind::none;
    std::string text; // for done

    static Notice none() { return {}; }
    static Notice saved() { return { Kind::saved, {} }; }
    static Notice done(std::string text) { return { Kind::done, std::move(text) }; }
    bool operator==(const Notice&) const = default;
};

// What a save does with "Archive previous versions".
enum class ArchiveDecision { off, on, purge, ask };
ArchiveDecision archiveDecision(const FormValues& form, bool currentlyOn);

std::string render(const Notice& notice, bool confirmArchive);
// Validates and stores every field; returns where to redirect.
std::string save(const FormValues& form);
// Clears history, cookies and cache (of the requesting view's session), or the location answers;
// returns where to redirect.
std::string performMaintenance(MaintenanceAction action, std::optional<std::uint64_t> requestingView);

// The page's one script, exactly as embedded (its hash goes into the pages' content policy).
std::string_view script();

} // namespace SettingsPage

} // namespace velder
