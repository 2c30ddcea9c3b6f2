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
  std::string failure;  ///< what the handler raised; empty if it returned
  std::vector<Platform::RehearsedStep> steps;
  std::vector<StartedAction> started;
  RehearsedCommunications::Messages messages;
  StateChanges changes;
  /// Errors and warnings that the log would get, in order.
  std::vector<std::pair<Common::Logger::Level, std::string>> logged;
};

/// An agent that does nothing: the module runs in it on a copy of the data folder, under a
/// rehearsal of the machine, with nobody to talk to. One at a time in a process, and none beside an
/// `AgentHost`.
class RehearsalHost {
 public:
  /// Raises as `AgentHost` does.
  /// @param sessions which users count as connected
  explicit RehearsalHost(const Host::AgentOptions& options,
                         const RehearsedCommunications::Sessions& sessions = {});
  RehearsalHost(const RehearsalHost&) = delete;
  RehearsalHost& operator=(const RehearsalHost&) = delete;
  ~RehearsalHost();

  Common::IModule& Module() { return *assembled_->module; }
  /// For one call.
  RehearsedAction Run(unsigned int code, const Common::ActionParameters& parameters);
  /// A text in which the paths of the copy are those of the data folder itself.
  std::string InOriginal(const std::string& text) const;

 private:
  /// Has the paths of the process lead into a folder.
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
  // In the order in which they need each other; the module goes first.
  Platform::Rehearsal rehearsal_;
  std::mutex logMutex_;
  std::vector<std::pair<Common::Logger::Level, std::string>> logged_;
  std::unique_ptr<const Host::LoggerScope> logger_;
  std::shared_ptr<RehearsedCommunications> communications_;
  std::shared_ptr<RehearsedActions> actions_;
  std::unique_ptr<Host::AssembledModule> assembled_;
};

}  // namespace Norvik::Cli
