#pragma once

#include <boost/filesystem/path.hpp>
#include <cstddef>

#include "common/Api.h"

namespace Norvik::Common {

/// Files in the document of a file inventory by their status. A total document has only `total`, an
/// incremental one only the others.
struct FilesCounts {
  std::size_t total = 0;
  std::size_t added = 0;
  std::size_t modified = 0;
  std::size_t removed = 0;
};

/// Counts without parsing, since the document of a whole disk is large. A file that cannot be read
/// counts as far as it could be, without an error.
NORVIK_COMMON_API FilesCounts CountFiles(const boost::filesystem::path& document);

}  // namespace Norvik::Common
