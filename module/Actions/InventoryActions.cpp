#include "module/Actions/InventoryActions.h"

#include <chrono>
#include <utility>

#include "common/action/InventorySchedules.h"
#include "common/database/DataBase.h"
#include "common/log/Logger.h"
#include "common/progress/Progress.h"
#include "common/text/OperatingSystemType.h"
#include "common/text/Text.h"
#include "module/ActionCodes.h"
#include "module/ActionPeriods.h"
#include "module/Actions/NetworkDrivesActions.h"
#include "module/KobInventory.h"
#include "module/RUD/RudInventoryV2.h"

namespace Norvik::KOB {

namespace {

using Common::RunKind;
using Common::TaskResponseInfo;
using std::chrono::seconds;
using std::chrono::system_clock;

constexpr char MACHINE_INCREMENTAL[] = "kobIncremental";
constexpr char MACHINE_ALREADY_RUNNING[] = "KOB Inventory already running";
constexpr char MACHINE_WITHOUT_TOKEN[] = "The token is null, kob Inventory not started";

}  // namespace

InventoryActions::InventoryActions(std::weak_ptr<Common::ModuleDependencies> dependencies,
                                   const Common::ActionFactory& factory,
                                   Common::HandlerMap& handlers)
    : ActionPerformerBase(Common::PRODUCT_KOB, factory, dependencies),
      configuration_(std::shared_ptr<Common::ModuleDependencies>(dependencies)->configuration) {
  NORVIK_SCOPE();
  children_.push_back(std::make_unique<NetworkDrivesActions>(dependencies, factory, handlers));
  if (processKind == 0) {
    agentIdentifier_ =
        std::shared_ptr<Common::IIdentificationSystem>(identification)->GetAgentIdentifier();
  }
  RegisterHandlers(handlers);
  Common::ActionParameters none;
  OnSaveOperatingSystemType(none);
}

InventoryActions::~InventoryActions() = default;

void InventoryActions::RegisterHandlers(Common::HandlerMap& handlers) {
  const auto serve = [&](ActionCodes code, auto handler) {
    CreateActionRunner(handlers, code, handler, this);
  };
  serve(ACTION_UPDATE_CONFIGURATION, &InventoryActions::OnUpdateConfiguration);
  serve(ACTION_TOTAL_INVENTORY, &InventoryActions::DoKOBInventoryV2);
  serve(ACTION_INCREMENTAL_INVENTORY, &InventoryActions::DoKOBIncrementalInventory);
  serve(ACTION_FILE_INVENTORY, &InventoryActions::OnRUDInventoryV2);
  serve(ACTION_FILE_INVENTORY_ON_DEMAND, &InventoryActions::OnRUDInventoryOnDemandV2);
  serve(ACTION_FILE_INVENTORY_INCREMENTAL_ON_DEMAND,
        &InventoryActions::DoRUDInventoryIncrementalOnDemandV2);
  serve(ACTION_FILE_INVENTORY_INCREMENTAL, &InventoryActions::DoRUDInventoryIncrementalV2);
  serve(ACTION_FILE_INVENTORY_INIT, &InventoryActions::RUDInventoryInitV2);
  serve(ACTION_SAVE_OPERATING_SYSTEM_TYPE, &InventoryActions::OnSaveOperatingSystemType);
}

Common::ActionResponse InventoryActions::OnUpdateConfiguration(
    Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  if (!parameters.Exist(Common::COMMON_PARAMETER_CONFIGURATION)) return {};
  configuration_.Replace(
      parameters.Get<Common::AgentConfigurationInfo>(Common::COMMON_PARAMETER_CONFIGURATION),
      dataBase);
  return {};
}

Common::ActionResponse InventoryActions::DoKOBInventoryV2(Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  const std::unique_lock<std::mutex> lock(inventoryLock_, std::try_to_lock);
  if (!lock) {
    NORVIK_WARNING(MACHINE_ALREADY_RUNNING);
    Common::ReportRefusal(RunKind::MachineInventory, MACHINE_ALREADY_RUNNING);
    SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_FAILED, MACHINE_ALREADY_RUNNING);
    return {};
  }
  const std::shared_ptr<Common::IIdentificationSystem> identity(identification);
  if (identity->GetToken().empty()) {
    NORVIK_INFORMATION(MACHINE_WITHOUT_TOKEN);
    Common::ReportRefusal(RunKind::MachineInventory, MACHINE_WITHOUT_TOKEN);
    // Deliberately a total inventory without the request's parameters, whatever was asked for.
    RunOneShotAction(ACTION_TOTAL_INVENTORY, SECONDS_TO_RETRY_GET_INVENTORY, nullptr);
    return {};
  }
  const Common::RunScope progress(RunKind::MachineInventory);
  KobInventory inventory(dataBase, identification, configuration_.Kob().value(),
                         configuration_.Communications(), configuration_.ProfileId());
  SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_STARTED, nullptr);
  const bool incremental =
      parameters.Exist(MACHINE_INCREMENTAL) && parameters.Get<bool>(MACHINE_INCREMENTAL);
  NORVIK_INFORMATION(incremental ? "Generating KOB incremental inventory..."
                                 : "Generating KOB inventory...");
  progress.DecideKind(incremental);
  inventory.GenerateInventory(incremental);
  // Cut to the 32 bits that the table's numbers have.
  Common::V2::DataBase::SetDataTable(
      Common::LAST_INVENTORY_KEY, static_cast<int>(system_clock::to_time_t(system_clock::now())));
  NORVIK_INFORMATION(incremental ? "KOB incremental Inventory finished" : "KOB Inventory finished");
  RiseNewFileOnOutbox();
  SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_FINISHED, nullptr);
  return {};
}

Common::ActionResponse InventoryActions::DoKOBIncrementalInventory(
    Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_STARTED, nullptr);
  parameters.Set(MACHINE_INCREMENTAL, true);
  if (Common::V2::DataBase::GetDataTable(Common::LAST_INVENTORY_KEY) != 0) {
    DoKOBInventoryV2(parameters);
  } else {
    Common::ReportTotalInstead(RunKind::MachineInventory, "no inventory was ever taken");
    RunOneShotAction(ACTION_TOTAL_INVENTORY, seconds(0), nullptr);
  }
  return {};
}

Common::ActionResponse InventoryActions::OnSaveOperatingSystemType(Common::ActionParameters&) {
  Common::AgentData data(dataBase, Common::AGENT_DATA_TABLE);
  if (data.GetOptionalString(Common::OPERATING_SYSTEM_AGENT_DATA)) return {};
  const auto first =
      std::shared_ptr<Common::IIdentificationSystem>(identification)->GetFirstInventoryInfo();
  data.SetString(Common::OPERATING_SYSTEM_AGENT_DATA, Common::ToUtf8(first.operatingSystemType));
  return {};
}

}  // namespace Norvik::KOB
