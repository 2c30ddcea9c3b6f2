#include "platform/SystemLog.h"

#include <cstdio>

namespace Norvik::Platform {

void WriteSystemLog(const std::string& line) { std::fprintf(stderr, "%s\n", line.c_str()); }

}  // namespace Norvik::Platform
