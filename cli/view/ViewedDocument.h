#pragma once

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <string>
#include <vector>

#include "documents/DocumentText.h"

namespace Norvik::Cli {

/// A document of either inventory, full or incremental, for a page.
struct ViewedDocument {
  boost::filesystem::path file;
  std::string name;  ///< as people read it, in UTF-8
  std::string text;
  bool isFiles = false;
  bool isIncremental = false;
  bool isApplied = false;  ///< made of a full document and incremental ones
  std::int64_t time = 0;   ///< when it was made, milliseconds since the epoch; 0: unknown
  std::string machine;     ///< the identifier; "" without one
  std::string host;        ///< the machine's name; "" without one
  std::string family;      ///< of the operating system; "" without one

  /// Seconds since the epoch; null if unknown.
  Documents::Json Seconds() const;
};

/// Checks that the text is a document, and of which kind. A file inventory is never held as a
/// parsed document. Throws `DocumentError` that names the file.
ViewedDocument ViewedDocumentOf(const boost::filesystem::path& file, std::string text);

/// Throws `DocumentError` that names the first document of another machine than the first one.
void CheckOneMachine(const std::vector<ViewedDocument>& documents);

/// Sorts by time, documents without one first. Of those of one time, a full document comes before
/// the incremental ones that apply to it, and after those that lead to it from an earlier one.
void PutInOrder(std::vector<ViewedDocument>& documents);

/// Removes documents that are there twice and returns a line for each.
std::vector<std::string> RemoveDuplicates(std::vector<ViewedDocument>& documents);

}  // namespace Norvik::Cli
