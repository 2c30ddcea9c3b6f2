#pragma once

#include <string>
#include <vector>

#include "cli/commands/Rendering.h"
#include "common/action/ActionResponse.h"
#include "common/action/TaskResponseInfo.h"

namespace Norvik::Cli {

/// What came of an action, or would.
struct ActionOutcome {
  Common::ActionResponse response;
  std::vector<Common::TaskResponseInfo> statuses;
  std::string failure;  ///< what the handler raised; empty if it returned

  /// An action says in different ways that it failed.
  bool HasFailed() const;
  /// Why it failed, on one line; empty if the action does not say.
  std::string Reason() const;
};

OrderedJson ToJson(unsigned int code, const ActionOutcome& outcome);
std::string ToText(const ActionOutcome& outcome);

}  // namespace Norvik::Cli
