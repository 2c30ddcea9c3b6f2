#pragma once

#include <string>

#include "host/redaction/Replacements.h"
#include "host/redaction/SensitiveKind.h"

namespace Norvik::Host {

// Values of fields, whose kind is known. Each is replaced as a whole or in its sensitive parts,
// however short it is. Different values of a kind give different results.

/// @param replacements known values, which are found in texts and paths
std::string RedactedValue(SensitiveKind kind, const std::string& text,
                          const Replacements& replacements);

/// A path. Names of users are replaced, and those of volumes that are not the system's.
/// @param isPersonal if not null: what is below a user's folder or such a volume is replaced too,
///        but for the folders that every user has, and this is set to whether the path is there
std::string RedactedPath(const std::string& path, const Replacements& replacements,
                         bool* isPersonal);

/// The name of a file that is a user's own; its extension stays.
std::string RedactedFileName(const std::string& name, const StandIns& standIns);

}  // namespace Norvik::Host
