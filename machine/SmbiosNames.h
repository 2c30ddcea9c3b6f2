#pragma once

#include <cstdint>
#include <string>

namespace Norvik::Machine {

// The names of codes in the SMBIOS standard. Empty for codes that the standard does not define, and
// for those that mean "other", "unknown" or "none".

std::string ChassisTypeName(std::uint8_t type);
std::string ConnectorName(std::uint8_t type);
std::string PortTypeName(std::uint8_t type);
std::string MemoryFormFactorName(std::uint8_t form);
std::string MemoryTypeName(std::uint8_t type);

}  // namespace Norvik::Machine
