#include "module/RUD/RudInventoryV2.h"

#include <chrono>
#include <utility>

#include "common/files/ScanRules.h"
#include "common/log/Logger.h"
#include "common/progress/Progress.h"
#include "module/RUD/Data/RudDataSourceV2.h"
#include "module/RUD/RudPrinterV2.h"

namespace Norvik::KOB::V2 {

namespace {

/// What a run is doing, in the store and for those who follow it.
class State {
 public:
  void Enter(RudStatus status, TimePointStatus point) {
    using std::chrono::system_clock;
    RudDataSource::SetStatus(status, system_clock::to_time_t(system_clock::now()), point);
    phases_.Enter(status);
  }

 private:
  Common::PhasesScope phases_;
};

}  // namespace

RudInventory::RudInventory(OnFinish onFinish, std::string guid)
    : onFinish_(std::move(onFinish)), guid_(std::move(guid)) {}

void RudInventory::SetConfig(const ConfigScan& key, const std::set<std::string>& values) {
  config_[key] = values;
}

void RudInventory::AddConfig(const ConfigScan& key, const std::set<std::string>& values) {
  config_[key].insert(values.begin(), values.end());
}

std::set<std::string> RudInventory::GetConfig(const ConfigScan& key) const {
  return config_.at(key);
}

std::set<std::string> RudInventory::GetDevices(
    const std::vector<Common::PhysicalDiskInfo>& /*disks*/) {
  return Common::ScanRules::Roots();
}

// Saving rewrites the texts of the buffer. That needs no copy: the second save of the run would
// rewrite them in the same way.
bool RudInventory::SaveForComparison() {
  return RudDataSource::SaveBuffer(harvester_.GetBuffer(), true);
}

// The buffer is not read after the run's last save, and its memory is needed for the document.
bool RudInventory::SaveLast() {
  RudBuffer last = std::move(harvester_.GetBuffer());
  return RudDataSource::SaveBuffer(last, false);
}

void RudInventory::StartHarvester(const bool& incremental) {
  NORVIK_SCOPE();
  State state;
  state.Enter(RudStatusScanning, DateBegin);
  harvester_.SetConfigScan(config_);
  harvester_.Harvester();
  state.Enter(RudStatusSaving, DateModified);
  if (!(incremental ? SaveForComparison() : SaveLast())) {
    state.Enter(RudStatusFinished, DateEnd);
    onFinishInventory({});
    return;
  }
  state.Enter(RudStatusPrinting, DateModified);
  const Path result = RudPrinter::GenerateJSON(guid_, incremental);
  if (incremental) {
    // After the document is made, because that compares the scan with the main tables.
    state.Enter(RudStatusSaving, DateModified);
    SaveLast();
  }
  state.Enter(RudStatusFinished, DateEnd);
  finished_ = true;
  onFinishInventory(result);
}

void RudInventory::onFinishInventory(const Path& result) {
  // The call destroys this object: what it uses must not be a member, and nothing may follow it.
  const OnFinish onFinish = onFinish_;
  const Path path = result;  // NOLINT(performance-unnecessary-copy-initialization)
  onFinish(path);
}

}  // namespace Norvik::KOB::V2
