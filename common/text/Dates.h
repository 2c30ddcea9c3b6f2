#pragma once

#include <chrono>
#include <string>

#include "common/Api.h"

namespace Norvik::Common {

// Any thread may call; none of this throws or depends on the locale.

/// The date, in UTC, of a time in seconds since the epoch: "2026-01-31". Empty for a time beyond
/// the years that the system can express.
NORVIK_COMMON_API std::string DateToISODateUTC(long seconds);
/// Date and time, in UTC: "2026-01-31T23:59:58Z".
NORVIK_COMMON_API std::string DateToISOCombinedUTC(long seconds);

/// The point in time that a text states, by a format of `strptime`, with English names whatever the
/// locale. The whole text must match, but for white space at its end. The first function takes the
/// text for local time, the second one for UTC. The zero time point if the text does not match,
/// names a day that does not exist, or lies beyond the range of the clock.
NORVIK_COMMON_API std::chrono::system_clock::time_point StringToTimePoint(
    const std::string& text, const std::string& format);
NORVIK_COMMON_API std::chrono::system_clock::time_point UTCStringToTimePoint(
    const std::string& text, const std::string& format);

}  // namespace Norvik::Common
