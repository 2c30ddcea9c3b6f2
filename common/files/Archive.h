#pragma once

#include <boost/filesystem/path.hpp>
#include <string>

#include "common/Api.h"

namespace Norvik::Common {

/// Writes the source as the one deflated entry of a zip archive, under its file name. Replaces the
/// target whole or not at all; raises a subclass of `std::exception` on failure.
NORVIK_COMMON_API void WriteArchive(const boost::filesystem::path& source,
                                    const boost::filesystem::path& target);

/// The one entry of such an archive. Raises `std::runtime_error` if the file is none or its content
/// does not match its checksum.
NORVIK_COMMON_API std::string ReadArchive(const boost::filesystem::path& archive);

}  // namespace Norvik::Common
