#pragma once

#include <boost/filesystem/path.hpp>
#include <string>

namespace Norvik::KOB::V2 {

/// Makes the document of a file inventory from the store: every file of the main tables, or the
/// differences between the "_TEMP" tables and the main ones.
class RudPrinter {
 public:
  /// Writes the document, compressed and encrypted, into the work folder and answers its path;
  /// an empty path if there is nothing to send. The path is answered also if a step failed, and
  /// then names a file that may not exist. Raises what the work folder raises if it cannot be made.
  /// One call at a time: its files have fixed names.
  static boost::filesystem::path GenerateJSON(const std::string& guid, const bool& incremental);
};

}  // namespace Norvik::KOB::V2
