#pragma once

#include <boost/property_tree/ptree_fwd.hpp>
#include <string>
#include <vector>

#include "common/Api.h"
#include "common/action/IModule.h"
#include "common/action/ModuleAction.h"
#include "common/rest/RestMessages.h"

namespace Norvik::Common {

/// Asks the server for the tasks that it holds for this agent and product.
struct NORVIK_COMMON_API PendingTasksRequest : IRestRequest {
  operator json::JSON() const override;

  std::string agentIdentifier;
  ProductCodes product = PRODUCT_KOB;
};

/// A task of the answer that cannot be run as it stands.
struct RefusedTask {
  Schedule task;       ///< as far as it could be read
  std::string reason;  ///< for people, as in "it has no identifier"
};

/// The tasks, in the server's order. A task's name, dates and request are among its parameters, as
/// texts under the names `COMMON_PARAMETER_...`.
struct NORVIK_COMMON_API PendingTasksResponse : IRestResponse {
  /// Raises a subclass of `std::exception` if the answer is no list of tasks at all.
  void Assign(const boost::property_tree::ptree& body) override;

  std::vector<Schedule> schedules;
  std::vector<RefusedTask> refused;
};

}  // namespace Norvik::Common
