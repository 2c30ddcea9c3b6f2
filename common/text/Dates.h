#pragma once

#include <chrono>
#include <string>

#include "common/Api.h"

namespace Norvik::Common {

/// Date of a time in seconds since the epoch, in UTC: "2026-01-31". Empty if it has none.
NORVIK_COMMON_API std::string DateToISODateUTC(long seconds);
/// The same with the time of day: "2026-01-31T23:59:58Z".
NORVIK_COMMON_API std::string DateToISOCombinedUTC(long seconds);

/// Reads a text by a `strptime` format, in English whatever the locale: the first takes it for
/// local time, the second for UTC. The zero time point if the text does not match.
NORVIK_COMMON_API std::chrono::system_clock::time_point StringToTimePoint(
    const std::string& text, const std::string& format);
NORVIK_COMMON_API std::chrono::system_clock::time_point UTCStringToTimePoint(
    const std::string& text, const std::string& format);

}  // namespace Norvik::Common
