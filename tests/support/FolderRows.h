#pragma once

#include <string>
#include <vector>

#include "platform/DirectoryReader.h"

namespace Norvik::Tests {

/// Name, kind, size and time of each entry of a folder, or why they cannot be read; at the end the
/// error that ended the folder.
inline std::vector<std::string> RowsOf(Platform::DirectoryReader& reader,
                                       const std::string& folder) {
  std::vector<std::string> rows;
  Platform::DirectoryEntry entry;
  std::error_code end;
  reader.Open(folder);
  while (reader.Next(entry, end)) {
    std::error_code error;
    const auto metadata = reader.ReadMetadata(entry, error);
    const bool isUnknown = entry.kind == Platform::EntryKind::Unknown;
    std::string row = entry.name;
    for (const long long number : {static_cast<long long>(isUnknown ? metadata.kind : entry.kind),
                                   metadata.size, metadata.lastModification}) {
      row += ' ' + std::to_string(number);
    }
    rows.push_back(error ? row + ' ' + error.message() : row);
  }
  if (end) rows.push_back("error: " + end.message());
  if (reader.Next(entry, end)) rows.push_back(std::string("after the end: ") + entry.name);
  return rows;
}

inline std::vector<std::string> RowsOf(const Platform::ReadingWay& way, const std::string& folder) {
  Platform::DirectoryReader reader(way);
  return RowsOf(reader, folder);
}

}  // namespace Norvik::Tests
