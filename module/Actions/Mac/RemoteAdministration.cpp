#include "module/Actions/Mac/RemoteAdministration.h"

#include <utility>

#include "common/log/Logger.h"
#include "module/ActionCodes.h"

namespace Norvik::KOB {

using Common::TaskResponseInfo;

const std::string NOT_SUPPORTED_OPERATION = "Not supported operation";

struct RemoteAdministration::Operation {
  ActionCodes code;
  Response (RemoteAdministration::*handler)(Parameters&);
};

/// In the order of their registration.
const RemoteAdministration::Operation RemoteAdministration::OPERATIONS[] = {
    {ACTION_LIST_PROCESSES, &RemoteAdministration::ListProcesses},
    {ACTION_RUN_PROCESS, &RemoteAdministration::RunProcess},
    {ACTION_KILL_PROCESS, &RemoteAdministration::KillProcess},
    {ACTION_LIST_FILES, &RemoteAdministration::ListFiles},
    {ACTION_LIST_FOLDERS, &RemoteAdministration::ListFolders},
    {ACTION_DELETE_FILE, &RemoteAdministration::DeleteFile},
    {ACTION_LIST_REGISTRY_KEYS, &RemoteAdministration::RefuseOperation},
    {ACTION_LIST_REGISTRY_VALUES, &RemoteAdministration::RefuseOperation},
    {ACTION_CREATE_REGISTRY_KEY, &RemoteAdministration::RefuseOperation},
    {ACTION_SET_REGISTRY_VALUE, &RemoteAdministration::RefuseOperation},
    {ACTION_DELETE_REGISTRY_KEY, &RemoteAdministration::RefuseOperation},
    {ACTION_DELETE_REGISTRY_VALUE, &RemoteAdministration::RefuseOperation},
    {ACTION_RENAME_REGISTRY_KEY, &RemoteAdministration::RefuseOperation},
    {ACTION_RENAME_REGISTRY_VALUE, &RemoteAdministration::RefuseOperation},
    {ACTION_LIST_SERVICES, &RemoteAdministration::ListServices},
    {ACTION_START_SERVICE, &RemoteAdministration::StartService},
    {ACTION_STOP_SERVICE, &RemoteAdministration::StopService},
    {ACTION_RESTART_SERVICE, &RemoteAdministration::RestartService},
    {ACTION_PAUSE_SERVICE, &RemoteAdministration::PauseService},
    {ACTION_CONTINUE_SERVICE, &RemoteAdministration::ContinueService},
    {ACTION_LIST_SESSIONS, &RemoteAdministration::ListSessions},
    {ACTION_CLOSE_SESSION, &RemoteAdministration::CloseSession},
    {ACTION_RESTART, &RemoteAdministration::Restart},
    {ACTION_SHUTDOWN, &RemoteAdministration::Shutdown},
    {ACTION_SYNCHRONIZE_TIME, &RemoteAdministration::SynchronizeTime},
    {ACTION_LIST_NETWORK_CONNECTIONS, &RemoteAdministration::ListNetworkConnections},
    {ACTION_REMOVE_PRINTER, &RemoteAdministration::RemovePrinter},
    {ACTION_REMOVE_SHARED_RESOURCES, &RemoteAdministration::RemoveSharedResources},
    {ACTION_DELETE_EXTENSION, &RemoteAdministration::DeleteExtension},
    {ACTION_LIST_MAPPED_DRIVES, &RemoteAdministration::RefuseOperation},
    {ACTION_UNINSTALL_SOFTWARE, &RemoteAdministration::UninstallSoftware},
    {ACTION_UNINSTALL_AGENT_WITH_CHECK, &RemoteAdministration::UninstallAgentWithCheck},
    {ACTION_UNINSTALL_AGENT_WITHOUT_CHECK, &RemoteAdministration::UninstallAgentWithoutCheck},
};

RemoteAdministration::RemoteAdministration(std::weak_ptr<Common::ModuleDependencies> dependencies,
                                           const Common::ActionFactory& factory,
                                           Common::HandlerMap& handlers)
    : ActionPerformerBase(Common::PRODUCT_KOB, factory, std::move(dependencies)) {
  for (const Operation& operation : OPERATIONS) {
    CreateActionRunner(handlers, operation.code, operation.handler, this);
  }
}

Common::ActionResponse RemoteAdministration::RefuseOperation(Parameters&) {
  NORVIK_SCOPE();
  Response response;
  response.text = NOT_SUPPORTED_OPERATION;
  return response;
}

Common::ActionResponse RemoteAdministration::CreateRegistryValue(Parameters& parameters) {
  return RefuseOperation(parameters);
}

void RemoteAdministration::ReportStarted(Parameters& parameters) {
  SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_STARTED, nullptr);
}

void RemoteAdministration::ReportFinished(Parameters& parameters) {
  SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_FINISHED, nullptr);
}

void RemoteAdministration::Fail(Parameters& parameters, Response& response,
                                const std::string& reason) {
  response.text = reason;
  SendStatusForProgrammedTask(parameters, TaskResponseInfo::TASK_FAILED, reason.c_str());
}

}  // namespace Norvik::KOB
