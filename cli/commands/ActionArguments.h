#pragma once

#include <string>
#include <vector>

#include "common/action/ActionParameters.h"

namespace Norvik::Cli {

/// The code of an action that is told by its number or its name, in any letter case. Raises
/// `UsageError` for a name that is none and a number that is no code.
unsigned int ParseActionCode(const std::string& text);

/// Parameters told as "key=value" (a text, as `wxString`), "key:bool=true", "key:bool=false" or
/// "key:u64=123". Raises `UsageError` for anything else and for a key that comes twice.
Common::ActionParameters ParseActionParameters(const std::vector<std::string>& arguments);

}  // namespace Norvik::Cli
