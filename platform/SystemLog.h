#pragma once

#include <string>

namespace Norvik::Platform {

/// Writes a line to the system's own log, the error channel where it has none. UTF-8.
void WriteSystemLog(const std::string& line);

}  // namespace Norvik::Platform
