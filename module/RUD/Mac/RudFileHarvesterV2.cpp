#include "module/RUD/RudFileHarvesterV2.h"

#include "common/log/Logger.h"

namespace Norvik::KOB::V2 {

using Platform::EntryKind;

void FileHarvester::GetDetailsFiles(RudFileInfo& /*file*/, const std::string& /*path*/) {
  // Files have no version resources here; other systems fill the record's details.
  NORVIK_INFORMATION("NOT IMPLEMENTED");
}

void FileHarvester::ConfigureExecutableList() { NORVIK_INFORMATION("NOT IMPLEMENTED"); }

long long FileHarvester::GetLastModifiedTime(const Metadata& metadata, const std::string& path,
                                             Messages& messages) {
  if (!metadata.error) return metadata.values.lastModification * 1000;
  messages.emplace_back("last_write_time error", metadata.error.message(), path);
  return -1;
}

long long FileHarvester::GetFileSize(const Metadata& metadata, const std::string& path,
                                     Messages& messages) {
  std::error_code error = metadata.error;
  // A pipe or a socket has no size.
  if (!error && metadata.values.kind != EntryKind::File) {
    error = std::make_error_code(std::errc::operation_not_permitted);
  }
  if (!error) return metadata.values.size;
  messages.emplace_back("file_size error", error.message(), path);
  return 0;
}

std::string_view FileHarvester::GetFileName(const std::string& name) {
  return std::string_view(name).substr(0,
                                       name.size() - Common::ScanRules::ExtensionOf(name).size());
}

}  // namespace Norvik::KOB::V2
