#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace velder {

// Where Velder keeps its files, and its version. Every location is computed afresh on each read from
// the XDG environment ($XDG_DATA_HOME, $XDG_CACHE_HOME, $HOME), so a test or a second profile that sets
// its own variables gets its own folders.
namespace AppInfo {

// The desktop's name for Velder: the GtkApplication id, the .desktop file's name, GeoClue's desktop id.
inline constexpr const char* applicationId = "local.velder.Velder";

// The name the running Velder of this profile takes on the session bus: the application id for the
// default data folder, and for any other folder the id with ".Profile" and a hash of the folder's path, so
// that a second profile runs beside the first instead of handing its addresses over.
std::string instanceId();

// $XDG_DATA_HOME/Velder (default ~/.local/share/Velder): the key, the three sealed files, the engine's data.
std::string dataDirectory();
// $XDG_CACHE_HOME/Velder (default ~/.cache/Velder).
std::string cacheDirectory();

std::string keyFile(); // "vault.key"
std::string vaultFile(); // "vault.bin"
std::string historyFile(); // "history.bin"
std::string faviconFile(); // "favicons.bin"
std::string engineDirectory(); // the data folder, then "engine": cookies, storage, databases
std::string engineCacheDirectory(); // the cache folder, then "engine-cache": the engine's HTTP cache
std::string engineLogFile(); // "engine_log.txt" in the data folder
std::string previousEngineLogFile(); // "engine_log.previous.txt" in the data folder
std::string archiveDirectory(); // the cache folder, then "archive"
std::string updaterCacheDirectory(); // the cache folder, then "updater"

// The running program, as the system names it (/proc/self/exe), unless a test put another path in place.
std::string executablePath();
// Tests stand a program in another place; nullopt goes back to the real one.
void overrideExecutablePath(std::optional<std::string> path);
// The installation the program runs from, <root>/bin/velder: the folder above the program's own.
std::string installRoot();
// <install root>/share/velder/velder-info.json: the release's version, update feed and key.
std::string buildInfoFile();

// The version of this build: the installation's "CFBundleShortVersionString" when it has one, else the
// version the build was made with, "0.0" if none.
std::string version();

// Creates the data folder with any missing parents, and nothing else. Failures are ignored: later
// writes fail by their own rules.
void prepareDirectories();

// At start, before the engine opens its log: a log above the limit becomes the previous log,
// replacing any earlier one. A log of exactly the limit stays. Every failure is ignored.
void rotateEngineLogIfLarge(std::uint64_t limitBytes);

} // namespace AppInfo

} // namespace velder
