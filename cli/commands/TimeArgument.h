#pragma once

#include <chrono>
#include <string>

namespace Norvik::Cli {

/// The time that an argument names: "2026-01-31", "2026-01-31T12:00" or "2026-01-31 12:00:00", in
/// local time unless "Z" or an offset such as "+02:00" follows; or a period before now: "90s",
/// "30m", "12h", "7d", "2w". Throws `UsageError`, which begins with the name of the option.
std::chrono::system_clock::time_point TimeOfArgument(const std::string& option,
                                                     const std::string& text,
                                                     std::chrono::system_clock::time_point now);

}  // namespace Norvik::Cli
