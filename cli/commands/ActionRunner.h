#pragma once

#include <boost/optional.hpp>
#include <memory>

#include "cli/commands/CommandLine.h"
#include "common/progress/ProgressListener.h"
#include "host/assembly/AgentHost.h"
#include "host/run/ResponseJson.h"

namespace Norvik::Cli {

/// Runs the action of a command: in the agent that runs on the data folder if there is one, which
/// the socket tells, and in this process otherwise. What the command sees and gets is the same.
class ActionRunner {
 public:
  /// Assembles an agent, or finds the one that runs; `Paths` are those of its data folder then.
  /// Throws what `AgentHost` throws, and `std::runtime_error` if an agent runs and the command line
  /// has options that it cannot obey.
  /// @param listener hears the progress of the action and of all that it starts
  /// @param onLine   gets the lines of the log that these cause, or at least those of level 2
  ActionRunner(const CommandLine& line, std::shared_ptr<Common::IProgressListener> listener,
               Host::LogListener onLine);

  /// Runs an action, and waits for the actions that it starts without a delay. Throws `UsageError`
  /// if nothing serves the code, and `std::runtime_error` if the running agent ends before the
  /// action.
  Host::ActionResult Run(unsigned int code, const Common::ActionParameters& parameters);
  /// The configuration of the agent.
  Common::AgentConfigurationInfo Configuration() const;

 private:
  Host::ActionResult RunHere(unsigned int code, const Common::ActionParameters& parameters);

  const boost::filesystem::path socket_;
  const std::shared_ptr<Common::IProgressListener> listener_;
  const Host::LogListener onLine_;
  boost::filesystem::path configurationFile_;  ///< of an agent that runs; empty: the stored one
  /// Null: an agent runs.
  std::unique_ptr<const Common::ProgressListenerScope> listening_;
  std::unique_ptr<Host::AgentHost> host_;
};

}  // namespace Norvik::Cli
