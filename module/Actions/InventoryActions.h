#pragma once

#include <boost/filesystem/path.hpp>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "common/action/ActionPerformerBase.h"
#include "module/HeldConfiguration.h"
#include "module/RUD/ConfigScan.h"

namespace Norvik::KOB {

namespace V2 {
class RudInventory;
}

/// Runs the inventories. One machine inventory and one file inventory at a time: a request during a
/// run is refused, not queued. The handlers do not see whether a run failed inside: a run that left
/// no file still counts as done.
///
/// A file inventory has two halves. The handler of the request decides, prepares the run and starts
/// the action that performs it; the host must not run that one inside the call that starts it.
class InventoryActions final : public Common::ActionPerformerBase {
 public:
  /// Records the operating-system type, and so uses the database and the identification; throws
  /// what they throw.
  InventoryActions(std::weak_ptr<Common::ModuleDependencies> dependencies,
                   const Common::ActionFactory& factory, Common::HandlerMap& handlers);
  ~InventoryActions() override;

 private:
  Common::ActionResponse OnUpdateConfiguration(Common::ActionParameters& parameters);
  Common::ActionResponse DoKOBInventoryV2(Common::ActionParameters& parameters);
  Common::ActionResponse DoKOBIncrementalInventory(Common::ActionParameters& parameters);
  Common::ActionResponse OnSaveOperatingSystemType(Common::ActionParameters& parameters);

  // File inventories.
  Common::ActionResponse OnRUDInventoryV2(Common::ActionParameters& parameters);
  Common::ActionResponse OnRUDInventoryOnDemandV2(Common::ActionParameters& parameters);
  Common::ActionResponse DoRUDInventoryIncrementalOnDemandV2(Common::ActionParameters& parameters);
  Common::ActionResponse DoRUDInventoryIncrementalV2(Common::ActionParameters& parameters);
  Common::ActionResponse RUDInventoryInitV2(Common::ActionParameters& parameters);

  /// Not locked, and the request reported as refused, if another thread has the lock.
  std::unique_lock<std::mutex> TryRunLock(Common::ActionParameters& parameters);
  /// The run that was accepted and has not begun; null without one.
  V2::RudInventory* TakeWaitingRun();
  /// Whether a total run has ended on this day of UTC.
  bool blockInventoryRUDV2();
  /// False if the request is refused. The caller holds the run lock.
  bool StartRudInventoryV2(const bool& incremental, Common::ActionParameters& parameters);
  void ConfigureRUDV2(V2::RudInventory& run, const Common::KobConfigurationInfo& configuration);
  static void CompleteExtensionToScanV2(V2::RudInventory& run);
  static void PrintLogConfigV2(const V2::RudInventory& run, const V2::ConfigScan& key,
                               const std::string& label);
  void OnRUDInventoryFinishV2(const boost::filesystem::path& result);
  void SendRUDInventoryFileV2(boost::filesystem::path file);

  void RegisterHandlers(Common::HandlerMap& handlers);

  HeldConfiguration configuration_;
  std::mutex inventoryLock_;
  std::mutex runLock_;  ///< guards start and end of a file inventory, not its run
  std::unique_ptr<V2::RudInventory> currentRun_;  ///< the file inventory; null if none runs
  bool runWaits_ = false;                         ///< it is accepted and has not begun
  std::vector<std::unique_ptr<Common::ActionPerformerBase>> children_;
  std::string agentIdentifier_;  ///< empty in a user's process
};

}  // namespace Norvik::KOB
