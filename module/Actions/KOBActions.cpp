#include "module/Actions/KOBActions.h"

#include <boost/format.hpp>
#include <chrono>
#include <utility>

#include "common/action/InventorySchedules.h"
#include "common/database/DataBase.h"
#include "common/log/Logger.h"
#include "common/rest/RemoteTaskDownloader.h"
#include "common/text/Text.h"
#include "module/ActionCodes.h"
#include "module/ActionPeriods.h"
#include "module/Actions/OtherProcesses.h"
#include "module/DataAccess/KOBDataSourceV2.h"

namespace Norvik::KOB {

namespace {

using Common::TaskResponseInfo;
using std::chrono::seconds;
using std::chrono::system_clock;
using TryLock = std::unique_lock<std::mutex>;

constexpr seconds BUSY_TOTAL_INVENTORY_DELAY{300};
constexpr char INVALID_PARAMETERS[] = "Invalid Parameters";
constexpr char NO_USERS[] = "No users to send OnShowMessage";

}  // namespace

KOBActions::KOBActions(const std::weak_ptr<Common::ModuleDependencies>& dependencies,
                       const Common::ActionFactory& factory, Common::HandlerMap& handlers,
                       TimeSource now)
    : ActionPerformerBase(Common::PRODUCT_KOB, factory, dependencies),
      now_(std::move(now)),
      configuration_(std::shared_ptr<Common::ModuleDependencies>(dependencies)->configuration) {
  NORVIK_SCOPE();
  const auto registerHandler = [&](unsigned int code, auto handler) {
    CreateActionRunner(handlers, code, handler, this);
  };
  registerHandler(Common::COMMON_ACTION_HARDWARE_CHANGES, &KOBActions::OnHardwareChangesDetected);
  registerHandler(Common::COMMON_ACTION_SOFTWARE_CHANGES, &KOBActions::OnSoftwareChangeDetected);
  registerHandler(ACTION_SHOW_MESSAGE, &KOBActions::OnShowMessage);
  registerHandler(ACTION_GET_PENDING_TASKS, &KOBActions::KOBGetPendingTasks);
  registerHandler(Common::COMMON_ACTION_GET_PENDING_TASKS, &KOBActions::KOBGetPendingTasks);
  registerHandler(ACTION_UPDATE_CONFIGURATION, &KOBActions::OnUpdateConfiguration);
  registerHandler(ACTION_SCHEDULE_TOTAL_INVENTORY, &KOBActions::OnScheduleTotalInventory);
  NORVIK_INFORMATION("KOB Service application created");
}

Common::ActionResponse KOBActions::OnHardwareChangesDetected(Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  HandleChangeDetection(parameters, hardwareLock_, "Hardware");
  return {};
}

Common::ActionResponse KOBActions::OnSoftwareChangeDetected(Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  HandleChangeDetection(parameters, softwareLock_, "Software");
  return {};
}

void KOBActions::HandleChangeDetection(Common::ActionParameters& parameters, std::mutex& lock,
                                       const std::string& kind) {
  const TryLock held(lock, std::try_to_lock);
  if (!held) {
    NORVIK_ERROR(boost::format("%1% changes event already running") % kind);
    return;
  }
  const std::int64_t period = KOBDataSourceV2::getInventoryChangePeriod();
  const std::int64_t last = Common::V2::DataBase::GetDataTable(Common::LAST_INVENTORY_KEY);
  const std::int64_t now = system_clock::to_time_t(now_());
  if (now <= last) return;
  if (now - last < period) {
    ReprogramInventory(last, period);
    return;
  }
  if (actionFactory) {
    std::shared_ptr<Common::IActionSystem>(actionSystem)
        ->QueueAction(actionFactory(ACTION_INCREMENTAL_INVENTORY, parameters));
  }
  NORVIK_DETAIL(boost::format("%1% changes successful, executing KOB incremental inventory.") %
                kind);
}

void KOBActions::ReprogramInventory(std::int64_t last, std::int64_t period) {
  const auto due =
      system_clock::from_time_t(static_cast<std::time_t>(last + period + DELAY_TIME.count()));
  const auto remaining = std::chrono::duration_cast<seconds>(due - now_());
  NORVIK_INFORMATION(boost::format("KOB incremental inventory execution will be in %1% seconds") %
                     std::to_string(remaining.count()));
  Common::AgentData data(dataBase, Common::AGENT_DATA_TABLE);
  // Deliberately the code of software changes for hardware changes too: one later check covers
  // both.
  ReplacePeriodicAction(Common::COMMON_ACTION_SOFTWARE_CHANGES, data, seconds(0), remaining);
}

Common::ActionResponse KOBActions::OnShowMessage(Common::ActionParameters& parameters) {
  SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_STARTED, nullptr);
  const TryLock held(messageLock_, std::try_to_lock);
  if (!held) {
    SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_FAILED, nullptr);
    return {};
  }
  NORVIK_DETAIL("!");
  if (!parameters.Exist(Common::PARAMETER_NAME)) return FailMessage(parameters, INVALID_PARAMETERS);
  const std::string text = Common::ToUtf8(parameters.Get<wxString>(Common::PARAMETER_NAME));
  NORVIK_DETAIL(boost::format("trying to send mesage to User %s") % text);
  if (processKind != 0) return {};

  const auto processes = RequireOtherProcesses(communications);
  const auto sessions = processes->GetSessions();
  if (sessions.empty()) return FailMessage(parameters, NO_USERS);
  for (const auto& session : sessions) {
    SendMessageToSession(*processes, session.first, session.second, text);
    // Deliberately once per session, whether or not the message was delivered.
    SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_FINISHED, nullptr);
  }
  return {};
}

Common::ActionResponse KOBActions::FailMessage(Common::ActionParameters& parameters,
                                               const char* reason) {
  NORVIK_ERROR(reason);
  SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_FAILED, reason);
  return {};
}

void KOBActions::SendMessageToSession(Common::ICommunicationIPC& ipc, unsigned long long session,
                                      const Common::IPCSessionData& data, const std::string& text) {
  NORVIK_DETAIL(boost::format("Sending message to sid %d pid %s") % std::to_string(session) %
                data.processId);
  ipc.Send({0, Common::COMMON_ACTION_USER_MESSAGE, Common::PARAMETER_NAME, text}, session);
}

Common::ActionResponse KOBActions::KOBGetPendingTasks(Common::ActionParameters&) {
  NORVIK_SCOPE();
  const TryLock held(pendingTasksLock_, std::try_to_lock);
  if (!held) {
    NORVIK_DETAIL("Get pending task action is already running");
    return {};
  }
  boost::optional<std::string> identifier;
  if (const auto agent = identification.lock()) identifier = agent->GetAgentIdentifier();
  Common::RemoteTaskDownloader downloader(
      std::shared_ptr<Common::ICommunicationSystem>(communications), Common::PRODUCT_KOB,
      actionFactory, identifier.get_value_or(""), nullptr);
  for (const Common::Schedule& schedule : downloader.GetSchedules()) {
    std::shared_ptr<Common::IActionSystem>(actionSystem)->AddSchedule(schedule);
  }
  return {};
}

Common::ActionResponse KOBActions::OnUpdateConfiguration(Common::ActionParameters& parameters) {
  NORVIK_INFORMATION("!");
  if (!parameters.Exist(Common::COMMON_PARAMETER_CONFIGURATION)) return {};
  const auto agent =
      parameters.Get<Common::AgentConfigurationInfo>(Common::COMMON_PARAMETER_CONFIGURATION);
  NORVIK_INFORMATION("Applying new configuration to module");
  configuration_.Replace(agent, dataBase);
  return {};
}

Common::ActionResponse KOBActions::OnScheduleTotalInventory(Common::ActionParameters&) {
  NORVIK_SCOPE();
  const TryLock held(totalInventoryLock_, std::try_to_lock);
  if (!held) {
    NORVIK_WARNING("Reprograming schedule of kob total inventory");
    RunOneShotAction(ACTION_SCHEDULE_TOTAL_INVENTORY, BUSY_TOTAL_INVENTORY_DELAY, nullptr);
    return {};
  }
  RunOneShotAction(ACTION_TOTAL_INVENTORY, seconds(0), nullptr);
  return {};
}

Common::ActionResponse KOBActions::OnLogon(Common::ActionParameters&) {
  NORVIK_SCOPE();
  const auto configuration = configuration_.Kob();
  if (configuration && configuration->inventoryOnLogon) {
    RunOneShotAction(ACTION_INCREMENTAL_INVENTORY, seconds(0), nullptr);
  }
  return {};
}

}  // namespace Norvik::KOB
