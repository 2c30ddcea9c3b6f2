#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <tuple>
#include <vector>

#include "common/files/ScanRules.h"
#include "module/RUD/ConfigScan.h"
#include "module/RUD/Data/RudBufferV2.h"
#include "platform/DirectoryReader.h"

namespace Norvik::KOB::V2 {

/// Walks the configured folders and keeps each file that `Common::ScanRules` list. No file is
/// opened: it reads folders, and the metadata of the files that it keeps, once each, or with the
/// folder. An object is used for one scan, on one thread.
class FileHarvester {
 public:
  /// What was skipped or could not be read: what, why, which.
  using Messages = std::vector<std::tuple<std::string, std::string, std::string>>;

  /// Both ways of reading folders give the same rows, in the same order.
  explicit FileHarvester(Platform::ReadingWay way = Platform::UsualWay());

  /// Sets the configuration, which must hold all four sets, and fills the buffer's extensions.
  /// Throws `std::out_of_range` for an empty extension.
  void SetConfigScan(const ScanConfiguration& config);
  const ScanConfiguration& GetConfigScan() const { return rules_.Configuration(); }
  void ConfigureFoldersToScan();

  /// Walks all roots. Throws nothing: failures are logged, and what was found stays in the buffer.
  void Harvester();

  // As those of `Common::ScanRules`.
  bool IsExcludedFolder(const std::string& path) const { return rules_.IsExcludedFolder(path); }
  bool IsExcludedFile(const std::string& name) const { return rules_.IsExcludedName(name); }
  bool IsIncludedExtension(const std::string& extension) const {
    return rules_.IsWantedExtension(extension);
  }

  bool IsExecutableList(const std::string& extension) const;
  void PrintFilesWithError() const;
  RudBuffer& GetBuffer() { return buffer_; }
  /// The calls of all walks that ended.
  const Platform::ReadCalls& GetReadCalls() const { return readCalls_; }

 private:
  struct Walk;
  /// Metadata of a file, or why they could not be read.
  struct Metadata {
    Platform::EntryMetadata values;
    std::error_code error;
  };

  void ScanRoot(const std::string& root);
  void ScanFolder(Walk& walk);
  void ScanEntry(Walk& walk, const Platform::DirectoryEntry& entry);
  void KeepFile(Walk& walk, const Common::ScanRules::Extension& extension,
                const Metadata& metadata);
  void InsertFile(RudFileInfo& file, const std::string& extension);

  // These depend on the system.
  void GetDetailsFiles(RudFileInfo& file, const std::string& path);
  void ConfigureExecutableList();
  static long long GetLastModifiedTime(const Metadata& metadata, const std::string& path,
                                       Messages& messages);
  static long long GetFileSize(const Metadata& metadata, const std::string& path,
                               Messages& messages);
  /// The name without its extension, a part of the name itself.
  static std::string_view GetFileName(const std::string& name);

  const Platform::ReadingWay way_;
  Platform::ReadCalls readCalls_;
  Common::ScanRules rules_;
  std::vector<std::string> foldersToScan_;
  /// The buffer's ids of the wanted extensions, by their places in the configuration.
  std::vector<std::uint32_t> extensionIds_;
  std::int64_t totalScanTime_ = 0;  ///< milliseconds
  RudBuffer buffer_;
  std::set<std::string> executableList_;
  Messages messages_;
};

}  // namespace Norvik::KOB::V2
