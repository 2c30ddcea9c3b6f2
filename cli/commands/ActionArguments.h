#pragma once

#include <string>
#include <vector>

#include "common/action/ActionParameters.h"

namespace Norvik::Cli {

/// The code of an action, given as a decimal number or as a name in any letter case. Throws
/// `UsageError` for an unknown name or a number out of range. A number need not be a known code.
unsigned int ParseActionCode(const std::string& text);

/// Parameters given as "key=value" (UTF-8 text, stored as `wxString`), "key:bool=true",
/// "key:bool=false" or "key:u64=123" (stored as `unsigned long long`). Throws `UsageError` for
/// anything else and for a duplicate key.
Common::ActionParameters ParseActionParameters(const std::vector<std::string>& arguments);

}  // namespace Norvik::Cli
