#pragma once

#include <boost/optional.hpp>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "common/action/ActionPerformerBase.h"

namespace Norvik::KOB {

/// Runs the inventories. One machine inventory at a time: a request during a run is refused, not
/// queued. What a run inside reports to nobody, the handlers cannot tell either: a run that left
/// no file still counts as done.
class InventoryActions final : public Common::ActionPerformerBase {
 public:
  /// Records the operating-system type, and so reaches the database and the identification; raises
  /// what they raise.
  InventoryActions(std::weak_ptr<Common::ModuleDependencies> dependencies,
                   const Common::ActionFactory& factory, Common::HandlerMap& handlers);

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
  Common::ActionResponse RefuseFileInventory(Common::ActionParameters& parameters);

  void RegisterHandlers(Common::HandlerMap& handlers);

  boost::optional<Common::KobConfigurationInfo> configuration_;
  boost::optional<Common::CommunicationsInfo> communications_;
  std::mutex inventoryLock_;
  std::mutex configurationLock_;
  std::uint32_t profileId_ = 0;
  std::vector<std::unique_ptr<Common::ActionPerformerBase>> children_;
  std::string agentIdentifier_;  ///< empty in a user's process
};

}  // namespace Norvik::KOB
