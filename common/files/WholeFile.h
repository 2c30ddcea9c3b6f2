#pragma once

#include <boost/filesystem/path.hpp>

#include "common/Api.h"

namespace Norvik::Common {

// Both replace the target whole or not at all, have its content on the disk, and raise a subclass
// of `std::exception` on failure. The source must be a regular file.

NORVIK_COMMON_API void CopyWhole(const boost::filesystem::path& source,
                                 const boost::filesystem::path& target);
/// Renames; across file systems copies and then removes the source.
NORVIK_COMMON_API void MoveWhole(const boost::filesystem::path& source,
                                 const boost::filesystem::path& target);

}  // namespace Norvik::Common
