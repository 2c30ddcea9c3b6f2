#include "module/Actions/Mac/RemoteAdministration.h"

#include <wx/string.h>

#include <boost/format.hpp>
#include <utility>

#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "module/ActionCodes.h"

namespace Norvik::KOB {

const std::string NOT_SUPPORTED_OPERATION = "Not supported operation";

namespace {

constexpr char NAME_PARAMETER[] = "name";

/// Answers an operation on a service that this system's service manager does not know.
Common::ActionResponse RefuseForService(Common::ActionParameters& parameters, const char* refusal) {
  Common::ActionResponse response;
  if (parameters.Exist(NAME_PARAMETER)) {
    const std::string name = Common::ToUtf8(parameters.Get<wxString>(NAME_PARAMETER));
    response.text = (boost::format(refusal) % name).str();
  } else {
    response.text = (boost::format("Invalid Parameter %1%") % NAME_PARAMETER).str();
  }
  return response;
}

}  // namespace

struct RemoteAdministration::Operation {
  using Handler = Common::ActionResponse (RemoteAdministration::*)(Common::ActionParameters&);

  ActionCodes code;
  const char* name;
  Handler handler;           ///< null: not part of this build
  bool reportsTask = false;  ///< serves programmed tasks, and so tells their state
};

/// In the order of their registration.
const RemoteAdministration::Operation RemoteAdministration::OPERATIONS[] = {
    {ACTION_LIST_PROCESSES, "ListProcesses", nullptr},
    {ACTION_RUN_PROCESS, "RunProcess", nullptr, true},
    {ACTION_KILL_PROCESS, "KillProcess", nullptr},
    {ACTION_LIST_FILES, "ListFiles", nullptr},
    {ACTION_LIST_FOLDERS, "ListFolders", nullptr},
    {ACTION_DELETE_FILE, "DeleteFile", nullptr},
    {ACTION_LIST_REGISTRY_KEYS, "ListRegistryKeys", &RemoteAdministration::RefuseOperation},
    {ACTION_LIST_REGISTRY_VALUES, "ListRegistryValues", &RemoteAdministration::RefuseOperation},
    {ACTION_CREATE_REGISTRY_KEY, "CreateRegistryKey", &RemoteAdministration::RefuseOperation},
    {ACTION_SET_REGISTRY_VALUE, "SetRegistryValue", &RemoteAdministration::RefuseOperation},
    {ACTION_DELETE_REGISTRY_KEY, "DeleteRegistryKey", &RemoteAdministration::RefuseOperation},
    {ACTION_DELETE_REGISTRY_VALUE, "DeleteRegistryValue", &RemoteAdministration::RefuseOperation},
    {ACTION_RENAME_REGISTRY_KEY, "RenameRegistryKey", &RemoteAdministration::RefuseOperation},
    {ACTION_RENAME_REGISTRY_VALUE, "RenameRegistryValue", &RemoteAdministration::RefuseOperation},
    {ACTION_LIST_SERVICES, "ListServices", nullptr},
    {ACTION_START_SERVICE, "StartService", nullptr},
    {ACTION_STOP_SERVICE, "StopService", nullptr},
    {ACTION_RESTART_SERVICE, "RestartService", nullptr},
    {ACTION_PAUSE_SERVICE, "PauseService", &RemoteAdministration::PauseService},
    {ACTION_CONTINUE_SERVICE, "ContinueService", &RemoteAdministration::ContinueService},
    {ACTION_LIST_SESSIONS, "ListSessions", nullptr},
    {ACTION_CLOSE_SESSION, "CloseSession", nullptr},
    {ACTION_RESTART, "Restart", nullptr},
    {ACTION_SHUTDOWN, "Shutdown", nullptr},
    {ACTION_SYNCHRONIZE_TIME, "SynchronizeTime", nullptr, true},
    {ACTION_LIST_NETWORK_CONNECTIONS, "ListNetworkConnections", nullptr},
    {ACTION_REMOVE_PRINTER, "RemovePrinter", nullptr, true},
    {ACTION_REMOVE_SHARED_RESOURCES, "RemoveSharedResources", nullptr, true},
    {ACTION_DELETE_EXTENSION, "DeleteExtension", nullptr, true},
    {ACTION_LIST_MAPPED_DRIVES, "ListMappedDrives", &RemoteAdministration::RefuseOperation},
    {ACTION_UNINSTALL_SOFTWARE, "UninstallSoftware", nullptr, true},
    {ACTION_UNINSTALL_AGENT_WITH_CHECK, "UninstallAgentWithCheck", nullptr},
    {ACTION_UNINSTALL_AGENT_WITHOUT_CHECK, "UninstallAgentWithoutCheck", nullptr},
};

RemoteAdministration::RemoteAdministration(std::weak_ptr<Common::ModuleDependencies> dependencies,
                                           const Common::ActionFactory& factory,
                                           Common::HandlerMap& handlers)
    : ActionPerformerBase(Common::PRODUCT_KOB, factory, std::move(dependencies)) {
  for (const Operation& operation : OPERATIONS) {
    if (operation.handler) {
      CreateActionRunner(handlers, operation.code, operation.handler, this);
    } else {
      handlers[operation.code] = [this, &operation](Common::ActionParameters& parameters) {
        return AnswerUnavailable(operation, parameters);
      };
    }
  }
}

Common::ActionResponse RemoteAdministration::RefuseOperation(Common::ActionParameters&) {
  Common::ActionResponse response;
  response.text = NOT_SUPPORTED_OPERATION;
  return response;
}

Common::ActionResponse RemoteAdministration::CreateRegistryValue(
    Common::ActionParameters& parameters) {
  return RefuseOperation(parameters);
}

Common::ActionResponse RemoteAdministration::AnswerUnavailable(
    const Operation& operation, Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  Common::ActionResponse response;
  response.text =
      (boost::format("The operation %1% is not available in this build") % operation.name).str();
  NORVIK_WARNING(*response.text);
  if (operation.reportsTask) {
    SendStatusForProgrammedTask(parameters, Common::TaskResponseInfo::TASK_FAILED,
                                response.text->c_str());
  }
  return response;
}

Common::ActionResponse RemoteAdministration::PauseService(Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  return RefuseForService(parameters, "Pause service %1% is an operation unsupported on macOS");
}

Common::ActionResponse RemoteAdministration::ContinueService(Common::ActionParameters& parameters) {
  NORVIK_SCOPE();
  return RefuseForService(parameters, "Continue service %1% is an operation unsupported on macOS");
}

}  // namespace Norvik::KOB
