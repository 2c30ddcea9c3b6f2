#pragma once

#include <boost/filesystem/path.hpp>
#include <memory>

#include "common/Api.h"
#include "common/log/Logger.h"

namespace Norvik::Common {

/// A log file that is rotated at 5 MiB, three old files kept, mode 0600. Takes lines up to the
/// given level. Raises `std::runtime_error` if the file cannot be opened.
NORVIK_COMMON_API std::shared_ptr<Logger> MakeFileLogger(const boost::filesystem::path& file,
                                                         int maxLevel);

}  // namespace Norvik::Common
