#pragma once

#include <functional>
#include <memory>
#include <string>

#include "host/actions/SerialActions.h"
#include "host/assembly/AgentHost.h"
#include "host/ipc/IpcUser.h"

namespace Norvik::Host {

/// The running process of a logged-on user: the module, and the connection to the service. It shows
/// messages and surveys for the user itself, without the module. For one thread.
class UserRun {
 public:
  /// Shows a message or a survey: the name of its parameter ("message", "Url") and its text. Called
  /// on action threads, never on two at once.
  using Show = std::function<void(const std::string& name, const std::string& text)>;

  /// Initialises the module. Throws what `AgentHost`, `IpcUser` and the module throw.
  /// @param options must be those of a user's process
  UserRun(const AgentOptions& options, const boost::filesystem::path& socket, Show show);
  UserRun(const UserRun&) = delete;
  UserRun& operator=(const UserRun&) = delete;
  ~UserRun();

  /// Connects, and reconnects whenever the connection is lost.
  void Start();
  /// Does nothing: a user's process has no configuration.
  void Reload() {}
  void ReloadIfManagedChanged() {}
  /// Final. Returns what `AgentHost::StopActions` returns.
  bool Stop();

  const boost::filesystem::path& DataFolder() const { return host_.DataFolder(); }

 private:
  Common::ModuleAction ActionFor(const Common::IPCMessage& message);

  const Show show_;
  AgentHost host_;
  const std::shared_ptr<IpcUser> service_;
  const std::shared_ptr<SerialActions> messages_;
};

}  // namespace Norvik::Host
