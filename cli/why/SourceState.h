#pragma once

#include "cli/commands/Rendering.h"
#include "cli/why/Explanation.h"

namespace Norvik::Cli {

/// Whether this process finds what a collector asks, without asking it:
/// {"kind":"tool", "name":"ioreg", "there":true, "path":"/usr/sbin/ioreg", "problem":""}. "path" is
/// empty for all but tools. Calls of the system are always there.
OrderedJson StateOf(const AskedSource& source);

/// "ioreg", "I/O registry: IOAccelerator", "SMBIOS", "Core Location"
std::string NameOf(const AskedSource& source);

/// The permission that a section needs, and whether this process has it: {"needs":"root",
/// "has":true}. "has" is null if a process cannot tell; "needs" if nothing is needed.
OrderedJson PermissionOf(const std::string& needs);

}  // namespace Norvik::Cli
