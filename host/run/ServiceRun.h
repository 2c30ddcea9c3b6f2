#pragma once

#include <memory>

#include "host/actions/SerialActions.h"
#include "host/assembly/AgentHost.h"
#include "host/ipc/IpcService.h"
#include "host/run/AgentRequests.h"
#include "host/run/ServiceProgress.h"

namespace Norvik::Host {

/// The running service: the module, schedules, the socket for users' processes and
/// administrators, and the delivery to the server. For one thread.
class ServiceRun {
 public:
  /// Binds the socket and initialises the module. Throws what `AgentHost`, `IpcService` and the
  /// module throw.
  ServiceRun(const AgentOptions& options, const boost::filesystem::path& socket);
  ServiceRun(const ServiceRun&) = delete;
  ServiceRun& operator=(const ServiceRun&) = delete;
  ~ServiceRun();

  /// Accepts connections and starts the delivery.
  void Start();
  /// Reads the configuration file again. An invalid one is logged and changes nothing.
  void Reload();
  /// Final. Returns what `AgentHost::StopActions` returns.
  bool Stop();

  const boost::filesystem::path& DataFolder() const { return host_.DataFolder(); }

 private:
  void Initialise();
  void RunMessage(Common::IPCMessage message, std::function<void()> handled);
  void BeginSession(IpcService::SessionId session);

  const boost::filesystem::path configurationFile_;
  const std::shared_ptr<ServiceProgress> progress_;
  const Common::ProgressListenerScope listening_;
  AgentHost host_;
  const std::shared_ptr<IpcService> processes_;
  const std::shared_ptr<SerialActions> messages_;
  const AgentRequests requests_;
};

}  // namespace Norvik::Host
