#include "module/RUD/RudFileHarvesterV2.h"

#include <boost/filesystem/exception.hpp>
#include <boost/format.hpp>
#include <chrono>
#include <utility>

#include "common/log/Logger.h"
#include "common/progress/Progress.h"
#include "common/text/Text.h"
#include "module/ElapsedTime.h"

namespace Norvik::KOB::V2 {

using Common::ScanRules;
using Platform::EntryKind;
using std::chrono::steady_clock;

namespace {

constexpr std::size_t INITIAL_CAPACITY = 5000;

/// The folder as the paths of its entries have it, without a slash at its end.
std::string ParentPathOf(const std::string& folder) {
  const std::size_t last = folder.find_last_not_of('/');
  return last == std::string::npos ? folder : folder.substr(0, last + 1);
}

}  // namespace

/// The walk below one root. Texts are reused from entry to entry, which saves allocations.
struct FileHarvester::Walk {
  explicit Walk(const Platform::ReadingWay& way) : reader(way) {}

  Platform::DirectoryReader reader;
  Common::SeenCounts& seen = Common::SeenByThisRun();
  std::vector<std::string> waiting;  ///< folders, the next one last
  RudFileInfo file;
  std::string prefix;        ///< the open folder, with a slash at its end
  std::string parent;        ///< the open folder, without
  std::uint32_t pathId = 0;  ///< of the parent; 0 as long as none of its files is kept
  std::string name;          ///< of the entry
};

FileHarvester::FileHarvester(Platform::ReadingWay way)
    : way_(std::move(way)), buffer_(INITIAL_CAPACITY) {
  messages_.reserve(INITIAL_CAPACITY);
  ConfigureExecutableList();
}

void FileHarvester::SetConfigScan(const ScanConfiguration& config) {
  rules_ = ScanRules(config);
  ConfigureFoldersToScan();
}

void FileHarvester::ConfigureFoldersToScan() {
  const ScanConfiguration& config = GetConfigScan();
  foldersToScan_.clear();
  if (const auto roots = config.find(IncludePath); roots != config.end()) {
    foldersToScan_.assign(roots->second.begin(), roots->second.end());
  }
  const auto extensions = config.find(IncludeExtension);
  if (extensions == config.end()) return;
  for (const auto& extension : extensions->second) {
    buffer_.AddExtension(Common::ToUpper(extension.substr(1)));
  }
  // Read after all are added, because two spellings share the id of the last one.
  extensionIds_.clear();
  for (const auto& extension : extensions->second) {
    extensionIds_.push_back(buffer_.GetIdExtension(Common::ToUpper(extension.substr(1))));
  }
}

void FileHarvester::Harvester() {
  NORVIK_SCOPE();
  try {
    for (const auto& root : foldersToScan_) ScanRoot(root);
    PrintFilesWithError();
    NORVIK_INFORMATION(boost::format("Scan finished in %1% milliseconds") %
                       std::to_string(totalScanTime_));
  } catch (const std::exception& error) {
    PrintFilesWithError();
    NORVIK_ERROR(boost::format("RUDHarvester exception: %1%") % error.what());
  }
}

void FileHarvester::ScanRoot(const std::string& root) {
  NORVIK_INFORMATION(boost::format("Init scan of %1%") % root);
  const auto start = steady_clock::now();
  Walk walk(way_);
  walk.waiting.push_back(root);
  while (!walk.waiting.empty()) {
    const std::string folder = std::move(walk.waiting.back());
    walk.waiting.pop_back();
    if (IsExcludedFolder(folder)) {
      messages_.emplace_back("IsExcludedFolder", "Excluded folder by setting", folder);
      continue;
    }
    try {
      walk.reader.Open(folder);
    } catch (const boost::filesystem::filesystem_error& error) {
      NORVIK_DETAIL(boost::format("Cannot open directory %1%: %2%") % folder % error.what());
      continue;
    }
    Common::CountOne(walk.seen.folders);
    walk.prefix = ScanRules::PrefixOf(folder);
    walk.parent = ParentPathOf(folder);
    walk.pathId = 0;
    ScanFolder(walk);
  }
  const Platform::ReadCalls calls = walk.reader.Calls();
  readCalls_ = {readCalls_.bulk + calls.bulk, readCalls_.metadata + calls.metadata};
  const std::int64_t elapsed = MillisecondsSince(start);
  NORVIK_INFORMATION(boost::format("Scan folder %1% finished in %2% milliseconds") % root %
                     std::to_string(elapsed));
  totalScanTime_ += elapsed;
}

void FileHarvester::ScanFolder(Walk& walk) {
  Platform::DirectoryEntry entry;
  std::error_code error;
  while (walk.reader.Next(entry, error)) {
    try {
      ScanEntry(walk, entry);
    } catch (const std::exception& failure) {
      NORVIK_DETAIL(boost::format("Error processing file %1%: %2%") % (walk.prefix + entry.name) %
                    failure.what());
    }
  }
  // The entries after the fault are lost; those of other folders are not.
  if (error) {
    NORVIK_DETAIL(boost::format("Skipping %1% due to error: %2%") % walk.parent % error.message());
  }
}

void FileHarvester::ScanEntry(Walk& walk, const Platform::DirectoryEntry& entry) {
  EntryKind kind = entry.kind;
  Metadata metadata;
  if (kind == EntryKind::Unknown) {
    metadata.values = walk.reader.ReadMetadata(entry, metadata.error);
    if (metadata.error) throw std::system_error(metadata.error);
    kind = metadata.values.kind;
  }
  walk.name = entry.name;
  const ScanRules::Judgement judgement = rules_.Judge(kind, walk.name);
  switch (judgement.verdict) {
    case ScanRules::Verdict::Folder:
      walk.waiting.push_back(walk.prefix + walk.name);
      return;
    case ScanRules::Verdict::ExcludedName:
      messages_.emplace_back("IsExcludedFile", "Excluded file by setting", walk.name);
      return;
    case ScanRules::Verdict::Link:
    case ScanRules::Verdict::NoExtension:
    case ScanRules::Verdict::UnwantedExtension:
      return;
    case ScanRules::Verdict::Listed:
      break;
  }
  if (entry.kind != EntryKind::Unknown) {
    metadata.values = walk.reader.ReadMetadata(entry, metadata.error);
  }
  KeepFile(walk, *judgement.extension, metadata);
}

void FileHarvester::KeepFile(Walk& walk, const ScanRules::Extension& extension,
                             const Metadata& metadata) {
  Common::CountOne(walk.seen.files);
  RudFileInfo& file = walk.file;
  file.absolutePath.assign(walk.prefix).append(walk.name);
  file.fileName = GetFileName(walk.name);
  if (walk.pathId == 0) walk.pathId = buffer_.AddParentPath(walk.parent);
  file.pathId = walk.pathId;
  file.extensionId = extensionIds_.at(extension.second);
  file.lastModification = GetLastModifiedTime(metadata, file.absolutePath, messages_);
  file.size = GetFileSize(metadata, file.absolutePath, messages_);
  file.isExecutable = IsExecutableList(extension.first);
  InsertFile(file, extension.first);
}

void FileHarvester::InsertFile(RudFileInfo& file, const std::string& extension) {
  if (extension == ".exe" || extension == ".dll") {
    GetDetailsFiles(file, file.absolutePath);
    file.companyId = buffer_.AddCompanyName(file.details.Get().companyName);
    buffer_.Insert(file);
    file.companyId = 0;
    file.details.Clear();
  } else {
    buffer_.Insert(file);
  }
  file.lastModification = 0;
  file.size = 0;
  file.pathId = 0;
  file.extensionId = 0;
  file.isExecutable = false;
}

bool FileHarvester::IsExecutableList(const std::string& extension) const {
  return executableList_.count(extension) > 0;
}

void FileHarvester::PrintFilesWithError() const {
  for (const auto& [what, why, which] : messages_) {
    NORVIK_WARNING(boost::format("RUD: %1% - %2% - %3%") % what % why % which);
  }
}

}  // namespace Norvik::KOB::V2
