#pragma once

#include <optional>
#include <string>

#include "host/redaction/SensitiveKind.h"

namespace Norvik::Host {

/// What a property of a document is, by the key of the object or list that its record is in (the
/// section, or "logicalDisk" for those of a disk) and its own. Empty if no schema in docs/schema
/// has it.
std::optional<SensitiveKind> KindOfProperty(const std::string& section, const std::string& key);

}  // namespace Norvik::Host
