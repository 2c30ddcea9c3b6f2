#pragma once

#include <boost/filesystem/path.hpp>
#include <string>

namespace Norvik::KOB::V2 {

/// Makes the document of a file inventory from the store: every file of the main tables, or the
/// differences of the "_TEMP" tables from the main ones.
class RudPrinter {
 public:
  /// Writes the document, compressed and encrypted, into the work folder and returns its path; an
  /// empty path if there is nothing to send. If a step fails, the path is returned all the same and
  /// the file may not exist. Throws if the work folder cannot be made. One call at a time, because
  /// its files have fixed names.
  static boost::filesystem::path GenerateJSON(const std::string& guid, const bool& incremental);
};

}  // namespace Norvik::KOB::V2
