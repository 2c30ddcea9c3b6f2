#pragma once

#include <boost/filesystem/path.hpp>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "common/records/PhysicalDiskInfo.h"
#include "module/RUD/RudFileHarvesterV2.h"

namespace Norvik::KOB::V2 {

/// One run of the file inventory: walk, save, print, and the state of each in the store. An object
/// serves one run; runs must not overlap.
class RudInventory {
 public:
  using Path = boost::filesystem::path;
  /// Called at the end of the run with the path of the document, empty without a document. It may
  /// destroy the run.
  using OnFinish = std::function<void(const Path&)>;

  RudInventory(OnFinish onFinish, std::string guid);

  void SetConfig(const ConfigScan& key, const std::set<std::string>& values);
  void AddConfig(const ConfigScan& key, const std::set<std::string>& values);
  /// Throws `std::out_of_range` if the key was never set.
  std::set<std::string> GetConfig(const ConfigScan& key) const;

  /// Carries out the run. When it returns, `OnFinish` has been called and the object may no longer
  /// exist. Throws what `FileHarvester::SetConfigScan` and `RudPrinter::GenerateJSON` throw; then
  /// `OnFinish` is not called.
  void StartHarvester(const bool& incremental);
  void onFinishInventory(const Path& result);

  /// Whether the run has ended and its first save succeeded.
  bool IsFinished() const { return finished_; }

  /// Roots of the walk.
  static std::set<std::string> GetDevices(const std::vector<Common::PhysicalDiskInfo>& disks);

 private:
  bool SaveForComparison();
  /// Saves into the main tables; leaves the harvester without its buffer.
  bool SaveLast();

  bool finished_ = false;
  OnFinish onFinish_;
  FileHarvester harvester_;
  ScanConfiguration config_;
  std::string guid_;
};

}  // namespace Norvik::KOB::V2
