#include "raylume/platform/Time.h"

#include <time.h>

namespace platform {

namespace {

// Where the other system stops; this one would go on, and both have to tell the same.
constexpr std::int64_t kLastSecond = 32535215999;

using Conversion = struct tm*(const time_t*, struct tm*);

std::optional<CalendarTime> convert(Conversion conversion, std::int64_t seconds)
{
    const auto when = static_cast<time_t>(seconds);
    struct tm fields;
    if (seconds < 0 || seconds > kLastSecond || !conversion(&when, &fields)) {
        return std::nullopt;
    }
    return CalendarTime{fields.tm_year + 1900, fields.tm_yday + 1, fields.tm_hour, fields.tm_min};
}

}  // namespace

std::optional<CalendarTime> localTime(std::int64_t seconds)
{
    tzset();  // localtime_r alone need not look at the variable again
    return convert(&localtime_r, seconds);
}

std::optional<CalendarTime> utcTime(std::int64_t seconds)
{
    return convert(&gmtime_r, seconds);
}

}  // namespace platform
