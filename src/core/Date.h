#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace velder {

// A moment in time. Stored records hold UTC dates; in the files they are ISO 8601 in whole seconds.
using Date = std::chrono::system_clock::time_point;

inline Date now()
{
    return std::chrono::system_clock::now();
}

// The earliest date a record can hold (1678-01-01), for "never visited".
Date distantPast();

// "2026-11-20T08:00:00Z": whole seconds (fractions are dropped), UTC.
std::string formatIso8601(Date date);

// Reads "YYYY-MM-DDTHH:MM:SSZ" or the same with a "+HH:MM"/"-HH:MM" offset; nothing else. Dates before
// 1678 or after 2261 are held at those ends.
std::optional<Date> parseIso8601(std::string_view text);

// Seconds from `earlier` to `later`, as a double.
double secondsBetween(Date earlier, Date later);

} // namespace velder
