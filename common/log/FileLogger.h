#pragma once

#include <boost/filesystem/path.hpp>
#include <memory>

#include "common/Api.h"
#include "common/log/Logger.h"

namespace Norvik::Common {

/// A logger that writes to a file, mode 0600. The file is rotated at 5 MiB and three old ones are
/// kept. Each line is flushed; line ends inside a text are written as \n and \r. Throws
/// `std::runtime_error` if the file cannot be opened. A `LineLimitScope` limits the lines.
/// @param maxLevel texts of higher levels are not written, see `Logger::Level`
NORVIK_COMMON_API std::shared_ptr<Logger> MakeFileLogger(const boost::filesystem::path& file,
                                                         int maxLevel);

}  // namespace Norvik::Common
