#pragma once

#include <boost/filesystem/path.hpp>
#include <cstddef>

namespace Norvik::Cli {

/// Files in the document of a file inventory, by what it says of them. A total document has only
/// files of the first kind, an incremental one none of them.
struct FilesCounts {
  std::size_t total = 0;
  std::size_t added = 0;
  std::size_t modified = 0;
  std::size_t removed = 0;
};

/// Counts without parsing, as the documents of a whole disk are large. Of a file that cannot be
/// read, what could be.
FilesCounts CountFiles(const boost::filesystem::path& document);

}  // namespace Norvik::Cli
