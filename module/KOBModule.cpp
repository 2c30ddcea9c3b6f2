#include "module/KOBModule.h"

#include <functional>
#include <utility>

#include "common/LibraryVersion.h"
#include "common/action/InventorySchedules.h"
#include "common/database/DataBase.h"
#include "common/log/Logger.h"
#include "module/ActionCodes.h"
#include "module/ActionPeriods.h"
#include "module/Actions/InventoryActions.h"
#include "module/Actions/KOBActions.h"
#include "module/Actions/Mac/RemoteAdministration.h"
#include "module/Actions/NetworkDrivesActions.h"
#include "module/Actions/SoftwareChangesChecker.h"
#include "module/Actions/SurveyCompletionActions.h"
#include "module/HeldConfiguration.h"
#include "module/RUD/Data/RudDataSourceV2.h"

namespace Norvik::KOB {

namespace {

using std::chrono::seconds;
using std::chrono::system_clock;

/// The system's loader does not load the module with a library of another version.
[[gnu::used]] const char* const neededLibrary =
    &Common::LibraryOf<Common::CONTRACT, Common::LAYOUT>::present;

constexpr char FILE_INVENTORY_STATUS_TABLE[] = "RUD2_CURRENT_STATUS";
constexpr seconds FIRST_SCHEDULED_TOTAL{3};

/// Writes an execution that was pending before a restart into the schedule. False if none was.
bool ApplyPendingExecution(const char* key, boost::optional<Common::ScheduleInfo>& schedule) {
  const auto next = Common::CheckInventoryNextExecutionReboot(key, schedule);
  if (next == system_clock::from_time_t(0)) return false;
  schedule->next = system_clock::to_time_t(next);
  return true;
}

}  // namespace

KOBModule::KOBModule(std::weak_ptr<Common::ModuleDependencies> dependencies)
    : ActionPerformerBase(
          Common::PRODUCT_KOB,
          std::bind(&KOBModule::GetAction, this, std::placeholders::_1, std::placeholders::_2),
          dependencies),
      dependencies_(std::move(dependencies)) {
  NORVIK_SCOPE();
  const std::shared_ptr<Common::ModuleDependencies> locked(dependencies_);
  configuration_ = locked->configuration.kob;
  CreateActionRunner(handlers_, Common::COMMON_ACTION_INIT, &KOBModule::OnInit, this);
  CreateActionRunner(handlers_, Common::COMMON_ACTION_NEW_CONFIGURATION,
                     &KOBModule::OnNewConfiguration, this);

  // The order matters: a class replaces the handlers that an earlier one registered for its codes.
  const Common::ActionFactory factory =
      std::bind(&KOBModule::GetAction, this, std::placeholders::_1, std::placeholders::_2);
  remoteAdministration_ = std::make_unique<RemoteAdministration>(locked, factory, handlers_);
  actions_ = std::make_unique<KOBActions>(locked, factory, handlers_);
  inventoryActions_ = std::make_unique<InventoryActions>(locked, factory, handlers_);
  otherActions_.push_back(std::make_unique<NetworkDrivesActions>(locked, factory, handlers_));
  otherActions_.push_back(std::make_unique<SurveyCompletionActions>(locked, factory, handlers_));
  if (processKind == 0) {
    softwareChangesChecker_ = std::make_unique<SoftwareChangesChecker>(locked, factory, handlers_);
  }
}

KOBModule::~KOBModule() {
  NORVIK_SCOPE();
  // Deliberately not deleted: on a system with a watcher, its thread may still use the object.
  static_cast<void>(softwareChangesChecker_.release());
}

Common::ModuleAction KOBModule::GetAction(unsigned int code,
                                          const Common::ActionParameters& parameters) {
  return ActionPerformerBase::GetAction(code, parameters, handlers_);
}

std::vector<std::string> KOBModule::GetOutputExtensionFiles() { return {".jsonkob", ".jsonrud"}; }

Common::ProductCodes KOBModule::GetProductCode() { return Common::PRODUCT_KOB; }

Common::ActionResponse KOBModule::OnInit(Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  if (initialised) {
    NORVIK_INFORMATION("Module is already initializated");
    return {};
  }
  initialised = true;
  configuration_ = std::shared_ptr<Common::ModuleDependencies>(dependencies_)->configuration.kob;
  std::shared_ptr<Common::IActionSystem>(actionSystem)
      ->RunAction(GetAction(ACTION_UPDATE_CONFIGURATION, parameters));
  RunOneShotAction(ACTION_VALIDATE_NETWORK_DRIVES_KEY, seconds(0), nullptr);
  if (processKind != 0) {
    CreateUserActions();
  } else {
    try {
      CreateModuleSchedules();
    } catch (...) {
      NORVIK_ERROR("Error in CreateModuleSchedules");
    }
    RunOneShotAction(Common::COMMON_ACTION_START_CHANGE_CHECK, seconds(0), nullptr);
  }
  ResumeFileInventory();
  return {};
}

void KOBModule::ResumeFileInventory() {
  if (!Common::V2::DataBase::ExistTable(FILE_INVENTORY_STATUS_TABLE)) return;
  const V2::RudStatus status = V2::RudDataSource::GetStatus();
  if (status == V2::RudStatusNone || status == V2::RudStatusFinished) return;
  NORVIK_INFORMATION("Last Inventory didn't finish, resuming inventory now.");
  RunOneShotAction(ACTION_FILE_INVENTORY, seconds(0), nullptr);
}

Common::ActionResponse KOBModule::OnNewConfiguration(Common::ActionParameters& parameters) {
  if (!parameters.Exist(Common::COMMON_PARAMETER_CONFIGURATION)) {
    NORVIK_TRACE(">>");
    NORVIK_TRACE("There is not new configuration");
    // Deliberately not a trace: this exit must show at the default log level.
    NORVIK_INFORMATION("<<");
    return {};
  }
  NORVIK_SCOPE();
  const std::lock_guard<std::mutex> lock(configurationLock_);
  OnInit(parameters);
  UpdateConfiguration(parameters);
  RunOneShotAction(ACTION_INCREMENTAL_INVENTORY, seconds(0), nullptr);
  return {};
}

void KOBModule::UpdateConfiguration(Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  const std::string key = std::string("KOB_") + Common::COMMON_PARAMETER_CONFIGURATION;
  const auto agent =
      parameters.Get<Common::AgentConfigurationInfo>(Common::COMMON_PARAMETER_CONFIGURATION);
  if (!agent.kob) {
    NORVIK_ERROR("Missing configuration");
    return;
  }
  const std::string text = ConfigurationText(*agent.kob);
  Common::AgentData data(dataBase, Common::AGENT_DATA_TABLE);
  const std::string stored = data.GetOptionalString(key).get_value_or("");
  RunOneShotAction(ACTION_UPDATE_CONFIGURATION, seconds(0), &parameters);
  if (stored == text) return;
  NORVIK_INFORMATION("Configuration has changed");
  configuration_ = agent.kob;
  data.SetString(key, text);
  CreateInventorySchedules();
}

void KOBModule::CreateModuleSchedules() { CreateInventorySchedules(); }

void KOBModule::CreateInventorySchedules() {
  NORVIK_SCOPE();
  NORVIK_INFORMATION("Rescheduling actions");
  Common::AgentData data(dataBase, Common::AGENT_DATA_TABLE);
  if (!configuration_) return;

  const auto schedule = [&](const char* key, ActionCodes code,
                            boost::optional<Common::ScheduleInfo>& configured) {
    if (!configured) return;
    if (ApplyPendingExecution(key, configured)) {
      ReplacePeriodicAction(code, data, configured.get_ptr());
      return;
    }
    const auto computed = Common::CheckInventoryNextExecutionInit(configured);
    const bool machineInventory = code == ACTION_INCREMENTAL_INVENTORY;
    if (machineInventory) RunOneShotAction(ACTION_TOTAL_INVENTORY, seconds(0), nullptr);
    ReplacePeriodicAction(code, data, computed.get_ptr());
    if (machineInventory) {
      CreatePeriodicAction(ACTION_SCHEDULE_TOTAL_INVENTORY, data, PERIOD_TOTAL_INVENTORY,
                           FIRST_SCHEDULED_TOTAL);
    }
  };
  schedule(Common::LAST_INVENTORY_KEY, ACTION_INCREMENTAL_INVENTORY,
           configuration_->inventorySchedule);
  schedule(Common::LAST_INCREMENTAL_FILE_INVENTORY_KEY, ACTION_FILE_INVENTORY_INCREMENTAL,
           configuration_->fileInventoryIncrementalSchedule);
  schedule(Common::LAST_FILE_INVENTORY_KEY, ACTION_FILE_INVENTORY,
           configuration_->fileInventorySchedule);
  if (configuration_->pendingTasksSchedule) {
    ReplacePeriodicAction(ACTION_GET_PENDING_TASKS, data,
                          configuration_->pendingTasksSchedule.get_ptr());
  }
}

void KOBModule::CreateUserActions() {
  NORVIK_SCOPE();
  NORVIK_INFORMATION("Create user actions");
  Common::AgentData data(dataBase, Common::AGENT_DATA_TABLE);
  ReplacePeriodicAction(ACTION_NETWORK_DRIVES, data, PERIOD_GET_NET_DRIVES, DELAY_GET_NET_DRIVES);
}

}  // namespace Norvik::KOB

Norvik::Common::IModule* GetAgentModuleObject(
    const std::weak_ptr<Norvik::Common::ModuleDependencies>& dependencies) {
  return std::make_unique<Norvik::KOB::KOBModule>(dependencies).release();
}
