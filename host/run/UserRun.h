#pragma once

#include <functional>
#include <memory>
#include <string>

#include "host/actions/SerialActions.h"
#include "host/assembly/AgentHost.h"
#include "host/ipc/IpcUser.h"

namespace Norvik::Host {

/// A logged-on user's process at work: the module, and the connection to the service. Messages and
/// surveys for the user are shown here; the module has no part in them.
class UserRun {
 public:
  /// Takes what is for the user: the name of its parameter ("message", "Url") and its text. Called
  /// on action threads, one at a time.
  using Show = std::function<void(const std::string& name, const std::string& text)>;

  /// Initialises the module. What it raises, `AgentHost`, `IpcUser` or the module raised.
  /// @param options those of a user's process
  UserRun(const AgentOptions& options, const boost::filesystem::path& socket, Show show);
  UserRun(const UserRun&) = delete;
  UserRun& operator=(const UserRun&) = delete;
  ~UserRun();

  /// Connects, and stays connected.
  void Start();
  /// There is nothing to read again: a user's process is told nothing of a configuration.
  void Reload() {}
  /// Answers what `StopActions` does. Final.
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
