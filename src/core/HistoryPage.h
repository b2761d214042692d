#pragma once

#include "core/Date.h"
#include "core/HistoryEntry.h"

#include <string>

namespace velder {

// velder://history/: every entry, newest first, with one button to clear them all. Main thread.
namespace HistoryPage {

std::string render();
std::string row(const HistoryEntry& entry);
// A medium date with a short time, in the user's locale and time zone ("Nov 20, 2026, 08:00" in C).
std::string formatDate(Date date);

} // namespace HistoryPage

} // namespace velder
