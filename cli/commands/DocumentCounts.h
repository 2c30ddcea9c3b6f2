#pragma once

#include <cstddef>
#include <istream>
#include <map>
#include <string>

namespace Norvik::Cli {

/// What a document has under a key.
struct SectionCount {
  std::size_t records = 0;  ///< elements of a list, 1 for a single record, 0 for null
  bool isList = false;
};

/// By the keys of the document. Empty for text that is no JSON object. Does not hold the document
/// in memory.
std::map<std::string, SectionCount> CountRecords(std::istream& document);

}  // namespace Norvik::Cli
