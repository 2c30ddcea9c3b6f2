#pragma once

#include <boost/optional.hpp>
#include <string>
#include <vector>

#include "common/Api.h"

namespace Norvik::Common {

/// Splits a command line into words as a shell does: at blanks; single quotes keep everything,
/// double quotes keep all but a backslash before one of $ ` " \ or a line end, and elsewhere a
/// backslash keeps the next character. Nothing is expanded. Empty if a quote or a backslash is left
/// open.
NORVIK_COMMON_API boost::optional<std::vector<std::string>> SplitCommandWords(
    const std::string& line);

}  // namespace Norvik::Common
