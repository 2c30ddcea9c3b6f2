#pragma once

#include <boost/filesystem/path.hpp>
#include <string>

#include "common/Api.h"

namespace Norvik::Common {

/// Writes a zip archive with one deflated entry: the source, under its file name. Replaces the
/// target whole or not at all. Throws a subclass of `std::exception` on failure, also if the source
/// is no regular file. The memory used does not depend on the size of the source.
NORVIK_COMMON_API void WriteArchive(const boost::filesystem::path& source,
                                    const boost::filesystem::path& target);

/// The content of the one entry of such an archive, as a whole in memory. Throws
/// `std::runtime_error` if the file is no archive, has not exactly one entry, or the content does
/// not match its checksum.
NORVIK_COMMON_API std::string ReadArchive(const boost::filesystem::path& archive);

}  // namespace Norvik::Common
