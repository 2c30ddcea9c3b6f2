#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <memory>

#include "host/actions/ActionSystem.h"
#include "host/assembly/AssembledModule.h"
#include "host/assembly/Communications.h"
#include "host/assembly/ListeningLogger.h"
#include "host/data/DataFolder.h"
#include "host/server/ServerLink.h"

namespace Norvik::Host {

/// What an agent is made from.
struct AgentOptions {
  boost::filesystem::path dataFolder;
  boost::filesystem::path moduleFile;
  /// Configuration for this process; empty: the one stored in the data folder, if there is one.
  boost::filesystem::path configurationFile;
  /// Takes the place of the configuration's own; empty: no.
  boost::optional<Common::CommunicationsInfo> communications;
  int logLevel = 4;
  bool userProcess = false;
  /// Refuse to work beside another agent on the same data folder. Without this there is no road to
  /// the server, and a database that is there is only read.
  bool exclusive = true;
  LogListener logListener;
};

/// The configuration that the options ask for, of an agent with the data folder. Raises what
/// `ReadConfiguration` raises.
Common::AgentConfigurationInfo ConfigurationOf(const AgentOptions& options,
                                               const boost::filesystem::path& dataFolder);

/// Sets a UTF-8 character type for the process and leaves the rest of its locale alone.
void UseUtf8Characters();

/// The running agent: every part of the host, put together, and the module loaded into it. Nothing
/// runs in the module until an action is run. One at a time in a process.
class AgentHost {
 public:
  /// Makes the data folder and what belongs in it. Raises `UsageError` for a configuration that is
  /// wrong, and another `std::exception` with the reason for any other failure.
  explicit AgentHost(const AgentOptions& options);
  AgentHost(const AgentHost&) = delete;
  AgentHost& operator=(const AgentHost&) = delete;
  /// Waits for the actions that run; what is delayed or periodic is left for the next start.
  ~AgentHost();

  Communications& GetCommunications() { return *communications_; }
  Common::IModule& Module() { return *assembled_->module; }
  const std::shared_ptr<ActionSystem>& Actions() { return actionSystem_; }
  /// Null if no server is configured. Delivers nothing before it is started.
  ServerLink* Server() { return server_.get(); }
  /// What the module was made with.
  const Common::AgentConfigurationInfo& Configuration() const {
    return assembled_->dependencies->configuration;
  }
  const boost::filesystem::path& DataFolder() const { return dataFolder_; }

  /// Runs an action on this thread, then waits until everything has ended that it started without
  /// a delay. What the handler raises comes out after that.
  Common::ActionResponse Run(unsigned int code, const Common::ActionParameters& parameters);
  /// Lets periodic actions go on that the module has left to the agent data. For a process that
  /// stays, once the module is initialised.
  void ResumePeriodicActions();
  /// Hands an action to the action threads.
  void Queue(unsigned int code, const Common::ActionParameters& parameters);

 private:
  // In the order in which they need each other; the logger goes last.
  boost::filesystem::path dataFolder_;
  std::unique_ptr<const DataFolderLock> lock_;
  std::unique_ptr<const LoggerScope> logger_;
  std::shared_ptr<Communications> communications_;
  std::shared_ptr<ActionSystem> actionSystem_;
  std::unique_ptr<AssembledModule> assembled_;
  std::shared_ptr<ServerLink> server_;
};

}  // namespace Norvik::Host
