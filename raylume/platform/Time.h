// Calendar times.
#pragma once

#include <cstdint>
#include <optional>

#include "raylume/platform/Export.h"

namespace platform {

struct CalendarTime {
    int year = 0;       ///< As in dates: 2012.
    int dayOfYear = 0;  ///< From 1.
    int hour = 0;
    int minute = 0;
};

/// The local calendar time of a count of seconds since 1970-01-01T00:00:00Z, by the time zone that the
/// environment names now. Nothing for times below 0 or above 32535215999, which are refused.
PLATFORM_API std::optional<CalendarTime> localTime(std::int64_t seconds);

/// The same in UTC.
PLATFORM_API std::optional<CalendarTime> utcTime(std::int64_t seconds);

}  // namespace platform
