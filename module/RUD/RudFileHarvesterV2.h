#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <tuple>
#include <unordered_map>
#include <vector>

#include "module/RUD/ConfigScan.h"
#include "module/RUD/Data/RudBufferV2.h"
#include "platform/DirectoryReader.h"

namespace Norvik::KOB::V2 {

/// Walks the configured folders and keeps each file with a wanted extension. No file is opened: it
/// reads folders, and the metadata of the files that it keeps, once each. Links are neither
/// followed nor listed. An object serves one scan, on one thread.
class FileHarvester {
 public:
  /// What was skipped or not read: what, why, which.
  using Messages = std::vector<std::tuple<std::string, std::string, std::string>>;

  FileHarvester();

  /// Takes the configuration, which must hold all four sets, and fills the buffer's extensions.
  /// Raises `std::out_of_range` for an empty extension.
  void SetConfigScan(const ScanConfiguration& config);
  const ScanConfiguration& GetConfigScan() const { return config_; }
  void ConfigureFoldersToScan();

  /// Walks all roots. Raises nothing: what fails is logged, and what was found stays in the buffer.
  void Harvester();

  // Exact, case and all. Raise `std::out_of_range` if the configuration lacks the set.
  bool IsExcludedFolder(const std::string& path) const;
  bool IsExcludedFile(const std::string& name) const;
  bool IsIncludedExtension(const std::string& extension) const;

  bool IsExecutableList(const std::string& extension) const;
  void PrintFilesWithError() const;
  RudBuffer& GetBuffer() { return buffer_; }

 private:
  struct Walk;
  /// The answer to the one question for a file's metadata.
  struct Metadata {
    Platform::EntryFacts facts;
    std::error_code error;
  };

  void ScanRoot(const std::string& root);
  void ScanFolder(Walk& walk);
  void ScanEntry(Walk& walk, const Platform::DirectoryEntry& entry);
  void TakeFile(Walk& walk, std::uint32_t extensionId, const Metadata& metadata);
  void InsertFile(RudFileInfo& file, const std::string& extension);

  // What depends on the system.
  void GetDetailsFiles(RudFileInfo& file, const std::string& path);
  void ConfigureExecutableList();
  static long long GetLastModifiedTime(const Metadata& metadata, const std::string& path,
                                       Messages& messages);
  static long long GetFileSize(const Metadata& metadata, const std::string& path,
                               Messages& messages);
  /// The name without its extension, a part of the name itself.
  static std::string_view GetFileName(const std::string& name);

  ScanConfiguration config_;
  std::vector<std::string> foldersToScan_;
  /// Ids of the wanted extensions, under the spellings of the configuration.
  std::unordered_map<std::string, std::uint32_t> wanted_;
  std::int64_t totalScanTime_ = 0;  ///< milliseconds
  RudBuffer buffer_;
  std::set<std::string> executableList_;
  Messages messages_;
};

}  // namespace Norvik::KOB::V2
