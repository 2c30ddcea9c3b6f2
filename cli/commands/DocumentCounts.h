#pragma once

#include <cstddef>
#include <istream>
#include <map>
#include <string>

namespace Norvik::Cli {

/// The number of records under a key of a document.
struct SectionCount {
  std::size_t records = 0;  ///< elements of a list, 1 for a single record, 0 for null
  bool isList = false;
};

/// Counts by the keys of the document. Empty for text that is not a JSON object. Reads the stream
/// piece by piece, so the document is never whole in memory.
std::map<std::string, SectionCount> CountRecords(std::istream& document);

}  // namespace Norvik::Cli
