#pragma once

#include <boost/filesystem/path.hpp>
#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include "common/Api.h"

namespace Norvik::Common {

/// Writes a zip archive with one deflated entry: the source, under its file name. Replaces the
/// target whole or not at all. Throws a subclass of `std::exception` on failure, also if the source
/// is no regular file. The memory used does not depend on the size of the source.
NORVIK_COMMON_API void WriteArchive(const boost::filesystem::path& source,
                                    const boost::filesystem::path& target);

/// An entry of an archive of several.
struct ArchiveEntry {
  std::string name;  ///< with "/" between folders
  std::string content;
};

/// Writes a zip archive, mode 0600, with deflated entries. Returns false, and changes nothing, if
/// the target exists. Throws a subclass of `std::exception` on failure and leaves no file.
NORVIK_COMMON_API bool WriteNewArchive(const std::vector<ArchiveEntry>& entries,
                                       const boost::filesystem::path& target);

/// The content of the one entry of such an archive, as a whole in memory. Throws
/// `std::runtime_error` if the file is no archive, has not exactly one entry, the content does not
/// match its checksum, or it has more than `limit` bytes, of which no more are unpacked then.
NORVIK_COMMON_API std::string ReadArchive(
    const boost::filesystem::path& archive,
    std::size_t limit = std::numeric_limits<std::size_t>::max());

}  // namespace Norvik::Common
