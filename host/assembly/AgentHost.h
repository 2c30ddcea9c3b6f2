#pragma once

#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <memory>

#include "common/database/AgentDatabase.h"
#include "common/progress/ProgressListener.h"
#include "host/actions/ActionSystem.h"
#include "host/assembly/AssembledModule.h"
#include "host/assembly/Communications.h"
#include "host/assembly/ListeningLogger.h"
#include "host/configuration/ConfigurationFile.h"
#include "host/data/DataFolder.h"
#include "host/history/KeepingScope.h"
#include "host/server/ServerLink.h"

namespace Norvik::Host {

/// How an agent is assembled.
struct AgentOptions {
  boost::filesystem::path dataFolder;
  boost::filesystem::path moduleFile;
  /// Configuration for this process; empty: the one stored in the data folder, if it exists.
  boost::filesystem::path configurationFile;
  /// Its server settings replace those of the configuration.
  boost::optional<EffectiveConfiguration> newConfiguration;
  int logLevel = 4;
  bool userProcess = false;
  /// Lock the data folder, and fail if another agent uses it. Without this the agent has no
  /// connection to the server and only reads an existing database.
  bool exclusive = true;
  LogListener logListener;  ///< may be empty
};

/// The configuration of an agent with these options and this data folder. Sets the limit of tools
/// that it has. Throws what `ReadConfiguration` throws.
EffectiveConfiguration UseConfiguration(const AgentOptions& options,
                                        const boost::filesystem::path& dataFolder);

/// Throws `UsageError` if a module serves no action of this code.
void RequireHandler(Common::IModule& module, unsigned int code);

/// Sets a UTF-8 character type for the process, and changes nothing else of its locale.
void UseUtf8Characters();

/// The running agent: all parts of the host, assembled, with the module loaded. Nothing runs in the
/// module until an action is run. At most one at a time in a process.
class AgentHost {
 public:
  /// Creates the data folder and its files. Throws `UsageError` for an invalid configuration, and
  /// another `std::exception` with the reason for any other failure.
  explicit AgentHost(const AgentOptions& options);
  AgentHost(const AgentHost&) = delete;
  AgentHost& operator=(const AgentHost&) = delete;
  /// Waits for the actions that run. Periodic actions stay due for the next start.
  ~AgentHost();

  Communications& GetCommunications() { return *communications_; }
  Common::IModule& Module() { return *assembled_->module; }
  const std::shared_ptr<ActionSystem>& Actions() { return actionSystem_; }
  /// Null if no server is configured. Delivers nothing before it is started.
  ServerLink* Server() { return server_.get(); }
  /// The configuration that the module was created with.
  const Common::AgentConfigurationInfo& Configuration() const {
    return assembled_->dependencies->configuration;
  }
  const std::string& EnrolmentSecret() const { return enrolmentSecret_; }
  const boost::filesystem::path& DataFolder() const { return dataFolder_; }
  /// Null for a user's process and for a host that is not exclusive.
  DocumentHistory* History() { return history_.get(); }
  std::string Identifier() const { return assembled_->identification->GetAgentIdentifier(); }

  /// Runs an action on this thread, then waits for all actions that it started without a delay.
  /// Throws what the handler throws, after that wait.
  Common::ActionResponse Run(unsigned int code, const Common::ActionParameters& parameters);
  /// Resumes the periodic actions whose state the module left in the agent data. For a process that
  /// stays, after the module is initialised.
  void ResumePeriodicActions();
  /// Runs an action on the action threads. Returns at once.
  void Queue(unsigned int code, const Common::ActionParameters& parameters);
  /// Starts no further action, and waits up to 5 seconds for those that run; the log names them.
  /// Returns false, after logging each action that still runs then: the process may then only exit
  /// without destroying what they use. Periodic actions stay due for the next start.
  bool StopActions();

 private:
  // Each member needs those above it, so the logger outlives all that log, and the database the
  // services.
  boost::filesystem::path dataFolder_;
  std::string enrolmentSecret_;
  std::unique_ptr<const DataFolderLock> lock_;
  std::unique_ptr<const LoggerScope> logger_;
  std::shared_ptr<DocumentHistory> history_;
  std::unique_ptr<const KeepingScope> keeping_;
  std::shared_ptr<Common::AgentDatabase> dataBase_;
  std::shared_ptr<Communications> communications_;
  std::shared_ptr<ActionSystem> actionSystem_;
  std::unique_ptr<const Common::ProgressObserverScope> ledger_;  ///< null if nothing is written
  std::unique_ptr<AssembledModule> assembled_;
  std::shared_ptr<ServerLink> server_;
};

}  // namespace Norvik::Host
