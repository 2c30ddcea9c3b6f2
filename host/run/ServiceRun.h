#pragma once

#include <memory>
#include <string>

#include "host/actions/SerialActions.h"
#include "host/assembly/AgentHost.h"
#include "host/ipc/IpcService.h"
#include "host/run/AgentRequests.h"
#include "host/run/DriveLimits.h"
#include "host/run/ProgressEvents.h"
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
  /// Reads the configuration file and the managed preferences again. Invalid ones are logged and
  /// change nothing.
  void Reload();
  /// The same, if the managed preferences have changed since they were last read.
  void ReloadIfManagedChanged();
  /// Final. Returns what `AgentHost::StopActions` returns.
  bool Stop();

  const boost::filesystem::path& DataFolder() const { return host_.DataFolder(); }

 private:
  bool IsConfigurationKnown() const;
  void Initialise();
  void RunMessage(const Common::IPCMessage& message, const IpcService::Sender& sender,
                  std::function<void()> handled);
  void BeginSession(IpcService::SessionId session);

  const boost::filesystem::path configurationFile_;
  std::string managedState_;  ///< read before the configuration, so that no change is missed
  const std::shared_ptr<ServiceProgress> progress_;
  const Common::ProgressListenerScope listening_;
  const Common::ProgressObserverScope reporting_;  ///< to commands
  AgentHost host_;
  const std::shared_ptr<IpcService> processes_;
  const std::shared_ptr<SerialActions> messages_;
  DriveLimits drives_;
  const AgentRequests requests_;
};

}  // namespace Norvik::Host
