#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "common/action/ActionPerformerBase.h"

namespace Norvik::KOB {

/// Response text of an operation that this system does not have.
extern const std::string NOT_SUPPORTED_OPERATION;

/// Serves an operator's requests to this machine. A handler reads named parameters, does one job,
/// and says in the response's text why it failed; those that serve programmed tasks report the
/// task's state as well. They throw `boost::bad_get` for a parameter that is no text.
class RemoteAdministration final : public Common::ActionPerformerBase {
 public:
  using Response = Common::ActionResponse;
  using Parameters = Common::ActionParameters;

  RemoteAdministration(std::weak_ptr<Common::ModuleDependencies> dependencies,
                       const Common::ActionFactory& factory, Common::HandlerMap& handlers);

  /// Refuses like the other registry operations. Deliberately without an action code.
  Response CreateRegistryValue(Parameters& parameters);

 private:
  struct Operation;
  static const Operation OPERATIONS[];

  Response RefuseOperation(Parameters& parameters);

  Response ListProcesses(Parameters& parameters);
  Response RunProcess(Parameters& parameters);
  Response KillProcess(Parameters& parameters);

  Response ListSessions(Parameters& parameters);
  Response CloseSession(Parameters& parameters);
  Response Shutdown(Parameters& parameters);
  Response Restart(Parameters& parameters);
  Response SynchronizeTime(Parameters& parameters);

  Response ListFiles(Parameters& parameters);
  Response ListFolders(Parameters& parameters);
  Response DeleteFile(Parameters& parameters);
  Response DeleteExtension(Parameters& parameters);

  Response ListServices(Parameters& parameters);
  Response StartService(Parameters& parameters);
  Response StopService(Parameters& parameters);
  Response RestartService(Parameters& parameters);
  Response PauseService(Parameters& parameters);
  Response ContinueService(Parameters& parameters);

  Response ListNetworkConnections(Parameters& parameters);

  Response RemovePrinter(Parameters& parameters);
  Response RemoveSharedResources(Parameters& parameters);
  Response UninstallSoftware(Parameters& parameters);
  Response UninstallAgentWithCheck(Parameters& parameters);
  Response UninstallAgentWithoutCheck(Parameters& parameters);

  void ReportStarted(Parameters& parameters);
  void ReportFinished(Parameters& parameters);
  /// Reports the task as failed. The reason becomes the response's text.
  void Fail(Parameters& parameters, Response& response, const std::string& reason);
  /// What shutting down and restarting have in common.
  Response ChangePower(Parameters& parameters, unsigned int event, const char* failure);

  std::mutex uninstallLock_;  ///< held during the whole of `UninstallSoftware`
};

}  // namespace Norvik::KOB
