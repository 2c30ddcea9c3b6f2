#pragma once

#include <string>

namespace Norvik::Platform {

/// Writes a line, in UTF-8, to the log of the system; to standard error where the system has none.
void WriteSystemLog(const std::string& line);

}  // namespace Norvik::Platform
