#pragma once

#include <cstdint>
#include <string>

namespace Norvik::Machine::Mac {

/// The kernel's value of a name; empty or 0 if it has none.
std::string SysctlText(const char* name);
std::uint64_t SysctlNumber(const char* name);

}  // namespace Norvik::Machine::Mac
