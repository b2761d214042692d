#include "core/Date.h"

#include "core/Format.h"

namespace velder {

using namespace std::chrono;

namespace {

// The clock counts nanoseconds in 64 bits, which reaches from 1677 to 2262. Dates outside, such as
// another program's "distant past" of year 1, are held at the nearest whole year inside.
constexpr sys_days earliestDay = year(1678) / January / 1;
constexpr sys_days latestDay = year(2262) / January / 1;

} // namespace

Date distantPast()
{
    return Date(earliestDay);
}

std::string formatIso8601(Date date)
{
    auto seconds = floor<std::chrono::seconds>(date);
    auto days = floor<std::chrono::days>(seconds);
    year_month_day ymd(days);
    hh_mm_ss time(seconds - days);
    // Written by hand: this runs once per history entry when the history is saved.
    char text[] = "0000-00-00T00:00:00Z";
    auto put = [&](int at, long value, int digits) {
        for (int i = digits - 1; i >= 0; --i) {
            text[at + i] = static_cast<char>('0' + value % 10);
            value /= 10;
        }
    };
    int y = static_cast<int>(ymd.year());
    if (y < 0 || y > 9999) {
        return format("%04d-%02u-%02uT%02ld:%02ld:%02ldZ", y, static_cast<unsigned>(ymd.month()),
            static_cast<unsigned>(ymd.day()), static_cast<long>(time.hours().count()),
            static_cast<long>(time.minutes().count()), static_cast<long>(time.seconds().count()));
    }
    put(0, y, 4);
    put(5, static_cast<unsigned>(ymd.month()), 2);
    put(8, static_cast<unsigned>(ymd.day()), 2);
    put(11, time.hours().count(), 2);
    put(14, time.minutes().count(), 2);
    put(17, time.seconds().count(), 2);
    return std::string(text, 20);
}

namespace {

bool readNumber(std::string_view text, size_t at, size_t digits, int& out)
{
    if (at + digits > text.size()) {
        return false;
    }
    int value = 0;
    for (size_t i = at; i < at + digits; ++i) {
        char c = text[i];
        if (c < '0' || c > '9') {
            return false;
        }
        value = value * 10 + (c - '0');
    }
    out = value;
    return true;
}

} // namespace

std::optional<Date> parseIso8601(std::string_view text)
{
    // YYYY-MM-DDTHH:MM:SS then Z or ±HH:MM
    int y, mo, d, h, mi, s;
    if (text.size() < 20 || !readNumber(text, 0, 4, y) || text[4] != '-' || !readNumber(text, 5, 2, mo)
        || text[7] != '-' || !readNumber(text, 8, 2, d) || text[10] != 'T' || !readNumber(text, 11, 2, h)
        || text[13] != ':' || !readNumber(text, 14, 2, mi) || text[16] != ':' || !readNumber(text, 17, 2, s)) {
        return std::nullopt;
    }
    int offsetSeconds = 0;
    std::string_view zone = text.substr(19);
    if (zone == "Z") {
        offsetSeconds = 0;
    } else if (zone.size() == 6 && (zone[0] == '+' || zone[0] == '-') && zone[3] == ':') {
        int oh, om;
        if (!readNumber(zone, 1, 2, oh) || !readNumber(zone, 4, 2, om) || oh > 23 || om > 59) {
            return std::nullopt;
        }
        offsetSeconds = (oh * 3600 + om * 60) * (zone[0] == '+' ? 1 : -1);
    } else {
        return std::nullopt;
    }
    year_month_day ymd { year(y), month(static_cast<unsigned>(mo)), day(static_cast<unsigned>(d)) };
    if (!ymd.ok() || h > 23 || mi > 59 || s > 59) {
        return std::nullopt;
    }
    auto moment = sys_days(ymd) + hours(h) + minutes(mi) + seconds(s) - seconds(offsetSeconds);
    if (moment < earliestDay) {
        return Date(earliestDay);
    }
    if (moment > latestDay) {
        return Date(latestDay);
    }
    return Date(moment);
}

double secondsBetween(Date earlier, Date later)
{
    // Each side on its own: the difference of two far-apart dates overflows the clock's 64-bit count.
    return duration<double>(later.time_since_epoch()).count() - duration<double>(earlier.time_since_epoch()).count();
}

} // namespace velder
