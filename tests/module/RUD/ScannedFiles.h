#pragma once

#include <boost/optional.hpp>
#include <string>
#include <vector>

#include "module/RUD/Data/RudDataSourceV2.h"

namespace Norvik::Tests {

/// A file with the extension EXE that a scan found.
struct ScannedFile {
  std::string name;
  std::int64_t time = 1000;
  std::int64_t size = 0;
  std::string folder = "/it's";
  boost::optional<RudFileDetails> details = boost::none;
  bool isExecutable = false;
  std::string path = {};  ///< if empty, built from folder and name
};

inline KOB::V2::RudBuffer ScanOf(const std::vector<ScannedFile>& files) {
  KOB::V2::RudBuffer buffer(1);
  const auto extension = buffer.AddExtension("EXE");
  for (const auto& file : files) {
    RudFileInfo info;
    info.extensionId = extension;
    info.pathId = buffer.AddParentPath(file.folder);
    if (file.details) info.details.Make() = *file.details;
    info.companyId = buffer.AddCompanyName(info.details.Get().companyName);
    info.fileName = file.name;
    info.absolutePath = file.path.empty() ? file.folder + "/" + file.name + ".exe" : file.path;
    info.lastModification = file.time;
    info.size = file.size;
    info.isExecutable = file.isExecutable;
    buffer.Insert(info);
  }
  return buffer;
}

inline bool SaveScan(const std::vector<ScannedFile>& files, bool incremental) {
  auto buffer = ScanOf(files);
  return KOB::V2::RudDataSource::SaveBuffer(buffer, incremental);
}

}  // namespace Norvik::Tests
