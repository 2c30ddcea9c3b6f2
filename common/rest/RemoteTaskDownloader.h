#pragma once

#include <memory>
#include <string>
#include <vector>

#include "common/Api.h"
#include "common/action/IModule.h"
#include "common/action/ModuleAction.h"
#include "common/rest/ICommunicationSystem.h"

namespace Norvik::Common {

struct RefusedTask;

/// Fetches the tasks that are pending on the server for this agent. One thread at a time.
class NORVIK_COMMON_API RemoteTaskDownloader {
 public:
  /// @param communications  null: there are no tasks
  /// @param factory         makes the actions of codes: a task of a code that it does not know is
  ///                        refused; empty: every code is accepted
  /// @param parameters      added to each task that lacks them; copied; null: none
  RemoteTaskDownloader(std::shared_ptr<ICommunicationSystem> communications, ProductCodes product,
                       ActionFactory factory, std::string agentIdentifier,
                       const ActionParameters* parameters);

  /// Asks the server, waits for the answer, and returns the tasks in the order of the server. Empty
  /// after a failure, which is logged. A task that cannot be run is left out and reported to the
  /// server with the status "not run". The log names the first ten of an answer and counts the
  /// rest. Never throws.
  std::vector<Schedule> GetSchedules();

 private:
  bool IsKnown(unsigned int code) const;
  void Refuse(const std::vector<RefusedTask>& tasks);
  Schedule Completed(Schedule task) const;

  const std::shared_ptr<ICommunicationSystem> communications_;
  const ProductCodes product_;
  const ActionFactory factory_;
  const std::string agentIdentifier_;
  const ActionParameters parameters_;
};

}  // namespace Norvik::Common
