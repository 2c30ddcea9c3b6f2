#pragma once

#include <memory>
#include <string>
#include <vector>

#include "common/Api.h"
#include "common/action/IModule.h"
#include "common/action/ModuleAction.h"
#include "common/rest/ICommunicationSystem.h"

namespace Norvik::Common {

/// Fetches the tasks that the server holds for this agent. Not for two threads at once.
class NORVIK_COMMON_API RemoteTaskDownloader {
 public:
  /// @param communications  may be null: then there are no tasks
  /// @param factory         may be empty; if not, a task whose code it does not know is refused
  /// @param parameters      what every task begins with, before its own; may be null
  RemoteTaskDownloader(std::shared_ptr<ICommunicationSystem> communications, ProductCodes product,
                       ActionFactory factory, std::string agentIdentifier,
                       const ActionParameters* parameters);

  /// Asks, waits for the answer, and gives the tasks in the server's order. A failure gives none,
  /// and one line in the log. A task that cannot be run is left out with a line of its own, and the
  /// server learns of it by the status "not run". Never raises.
  std::vector<Schedule> GetSchedules();

 private:
  bool IsKnown(unsigned int code) const;
  void Refuse(const Schedule& task, const std::string& reason);
  Schedule Completed(Schedule task) const;

  const std::shared_ptr<ICommunicationSystem> communications_;
  const ProductCodes product_;
  const ActionFactory factory_;
  const std::string agentIdentifier_;
  const ActionParameters parameters_;
};

}  // namespace Norvik::Common
