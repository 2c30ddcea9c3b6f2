#pragma once

#include <boost/filesystem/path.hpp>

#include "common/Api.h"

namespace Norvik::Common {

/// Writes the source as the one deflated entry of a zip archive, under its file name. Replaces the
/// target whole or not at all; raises a subclass of `std::exception` on failure.
/// `ReadArchive` of FileSealer.h reads it back.
NORVIK_COMMON_API void WriteArchive(const boost::filesystem::path& source,
                                    const boost::filesystem::path& target);

}  // namespace Norvik::Common
