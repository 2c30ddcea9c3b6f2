#pragma once

#include <boost/optional.hpp>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "common/Api.h"
#include "common/action/ActionPerformerBase.h"
#include "common/action/IModule.h"

namespace Norvik::KOB {

class InventoryActions;
class KOBActions;
class RemoteAdministration;
class SoftwareChangesChecker;

/// The module as the host sees it: owns the action classes and the one map from action code to
/// handler, receives the configuration, and creates the schedules of the inventories. Nothing
/// starts before the host sends `COMMON_ACTION_INIT` or `COMMON_ACTION_NEW_CONFIGURATION`.
///
/// The same code runs in the agent's service and in each user's process; `processKind`
/// distinguishes them. Both share the agent database.
class KOBModule final : public Common::IModule, public Common::ActionPerformerBase {
 public:
  /// Throws `std::bad_weak_ptr` if the dependencies or a service that it uses no longer exist, and
  /// what the database and the identification throw.
  explicit KOBModule(std::weak_ptr<Common::ModuleDependencies> dependencies);
  ~KOBModule() override;

  Common::ModuleAction GetAction(unsigned int code,
                                 const Common::ActionParameters& parameters) override;
  std::vector<std::string> GetOutputExtensionFiles() override;
  Common::ProductCodes GetProductCode() override;

 private:
  Common::ActionResponse OnInit(Common::ActionParameters& parameters);
  Common::ActionResponse OnNewConfiguration(Common::ActionParameters& parameters);

  void UpdateConfiguration(Common::ActionParameters& parameters);
  void CreateModuleSchedules();
  void CreateInventorySchedules();
  void CreateUserActions();
  void ResumeFileInventory();

  Common::HandlerMap handlers_;
  boost::optional<Common::KobConfigurationInfo> configuration_;
  std::mutex configurationLock_;
  std::unique_ptr<KOBActions> actions_;
  std::unique_ptr<InventoryActions> inventoryActions_;
  std::unique_ptr<RemoteAdministration> remoteAdministration_;
  std::unique_ptr<SoftwareChangesChecker> softwareChangesChecker_;  ///< null in a user's process
  std::vector<std::unique_ptr<Common::ActionPerformerBase>> otherActions_;
  std::weak_ptr<Common::ModuleDependencies> dependencies_;
};

}  // namespace Norvik::KOB

/// Called by a host after it has loaded the library. The caller owns the object and must delete it
/// while the dependencies still exist. Throws what the constructor of `KOBModule` throws.
extern "C" NORVIK_COMMON_API Norvik::Common::IModule* GetAgentModuleObject(
    const std::weak_ptr<Norvik::Common::ModuleDependencies>& dependencies);
