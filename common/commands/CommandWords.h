#pragma once

#include <boost/optional.hpp>
#include <string>
#include <vector>

#include "common/Api.h"

namespace Norvik::Common {

/// Splits a command line into words as a shell does, at blanks. Between single quotes every
/// character stands for itself; between double quotes a backslash escapes only $ ` " \ and a
/// newline; outside of quotes it escapes any character. Nothing is expanded. Empty if a quote or a
/// backslash is left open.
NORVIK_COMMON_API boost::optional<std::vector<std::string>> SplitCommandWords(
    const std::string& line);

}  // namespace Norvik::Common
