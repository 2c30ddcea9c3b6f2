#pragma once

#include <boost/filesystem/path.hpp>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "cli/rehearsal/AgentState.h"
#include "cli/rehearsal/RehearsedActions.h"
#include "cli/rehearsal/RehearsedCommunications.h"
#include "host/assembly/AgentHost.h"
#include "host/data/DataFolderCopy.h"
#include "platform/Rehearsal.h"

namespace Norvik::Cli {

/// What an action would do.
struct RehearsedAction {
  Common::ActionResponse response;
  std::string failure;  ///< text of what the handler threw; empty if it returned
  std::vector<Platform::RehearsedStep> steps;
  std::vector<StartedAction> started;  ///< other actions, in order
  RehearsedCommunications::Messages messages;
  StateChanges changes;
  /// Errors and warnings for the log, in order.
  std::vector<std::pair<Common::Logger::Level, std::string>> logged;
};

/// An agent that changes nothing: its module runs on a copy of the data folder, under a rehearsal
/// of the machine, without a server or users. At most one at a time in a process, and not together
/// with an `AgentHost`. Not for several threads.
class RehearsalHost {
 public:
  /// Throws as `AgentHost` does. Does not create the data folder.
  /// @param sessions the users that count as connected
  explicit RehearsalHost(const Host::AgentOptions& options,
                         const RehearsedCommunications::Sessions& sessions = {});
  RehearsalHost(const RehearsalHost&) = delete;
  RehearsalHost& operator=(const RehearsalHost&) = delete;
  ~RehearsalHost();

  Common::IModule& Module() { return *assembled_->module; }
  /// Runs an action, and the second half of a file inventory if the action starts one. What the
  /// handler throws becomes `failure`. Call it once: `messages` holds all messages since the host
  /// was made.
  RehearsedAction Run(unsigned int code, const Common::ActionParameters& parameters);
  /// The text with the paths of the copy replaced by those of the data folder.
  std::string InOriginal(const std::string& text) const;

 private:
  /// Makes a folder the data folder of the process, and restores the former one.
  struct PathsScope {
    explicit PathsScope(const boost::filesystem::path& folder);
    PathsScope(const PathsScope&) = delete;
    PathsScope& operator=(const PathsScope&) = delete;
    ~PathsScope();
    const boost::filesystem::path former;
  };

  const boost::filesystem::path original_;
  const Host::DataFolderCopy copy_;
  const PathsScope paths_;
  // Each member needs those above it; the module is destroyed first.
  Platform::Rehearsal rehearsal_;
  std::mutex logMutex_;
  std::vector<std::pair<Common::Logger::Level, std::string>> logged_;
  std::unique_ptr<const Host::LoggerScope> logger_;
  std::shared_ptr<RehearsedCommunications> communications_;
  std::shared_ptr<RehearsedActions> actions_;
  std::unique_ptr<Host::AssembledModule> assembled_;
};

}  // namespace Norvik::Cli
