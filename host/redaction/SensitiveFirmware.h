#pragma once

#include <string>

#include "host/redaction/Replacements.h"

namespace Norvik::Host {

/// Adds serial numbers, asset tags and the UUID of all structures of an SMBIOS table, also of those
/// that are in no document.
/// @param bytes the entry point and the table, as in a recording; anything else holds nothing
void AddValuesOfSmbios(const std::string& bytes, Replacements& replacements);

/// Adds the serial number in the descriptors of a display.
/// @param block its first block, of 128 bytes
void AddValuesOfDisplay(const std::string& block, Replacements& replacements);

}  // namespace Norvik::Host
