#pragma once

#include <cstddef>
#include <istream>
#include <map>
#include <string>

namespace Norvik::Cli {

/// How many records stand under each key of a document: the elements of a list, 1 for a single
/// record, 0 for null. Empty for text that is no JSON object. Does not hold the document in memory.
std::map<std::string, std::size_t> CountRecords(std::istream& document);

}  // namespace Norvik::Cli
