#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <string>
#include <vector>

#include "common/Api.h"
#include "common/action/IModule.h"
#include "common/action/ModuleAction.h"
#include "common/rest/RestMessages.h"

namespace Norvik::Common {

/// Asks the server for the tasks that are pending for this agent and product.
struct NORVIK_COMMON_API PendingTasksRequest : IRestRequest {
  operator json::JSON() const override;

  std::string agentIdentifier;
  ProductCodes product = PRODUCT_KOB;
};

/// A task in the answer that cannot be run.
struct RefusedTask {
  Schedule task;       ///< the members that could be read
  std::string reason;  ///< for people, such as "it has no identifier"
};

/// The pending tasks, in the order of the server. Name, dates and request of a task are among its
/// parameters, as `std::string` under the names `COMMON_PARAMETER_...`. The answer is read within
/// fixed limits: an identifier has at most 200 bytes, a period at most ten years.
struct NORVIK_COMMON_API PendingTasksResponse : IRestResponse {
  /// Throws a subclass of `std::exception` if the answer is no list of tasks. A task that cannot be
  /// read does not affect the others.
  void Assign(const boost::property_tree::ptree& body) override;

  std::vector<Schedule> schedules;   ///< that can be run
  std::vector<RefusedTask> refused;  ///< the rest
};

}  // namespace Norvik::Common
