#pragma once

#include <boost/filesystem/path.hpp>

#include "common/Api.h"

namespace Norvik::Common {

/// Copies an agent database as it stands at one moment, even while an agent writes to it; the
/// source stays as it is. Raises a subclass of `std::exception` if there is none or it is damaged.
NORVIK_COMMON_API void CopyDatabase(const boost::filesystem::path& source,
                                    const boost::filesystem::path& target);

}  // namespace Norvik::Common
