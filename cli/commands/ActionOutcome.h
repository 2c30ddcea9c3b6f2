#pragma once

#include <string>
#include <vector>

#include "cli/commands/Rendering.h"
#include "common/action/TaskResponseInfo.h"
#include "host/run/ResponseJson.h"

namespace Norvik::Cli {

/// The outcome of an action that ran or was rehearsed.
struct ActionOutcome : Host::ActionResult {
  std::vector<Common::TaskResponseInfo> statuses;  ///< in the order in which they were reported

  /// An action can report a failure by an exception, by its text or by its last status.
  bool HasFailed() const;
  /// Why it failed, on one line; empty if the action does not say.
  std::string Reason() const;
};

/// {"code", "text", "success", "titles", "rows", "statuses"} with a newline at its end
std::string ToJsonLine(unsigned int code, const ActionOutcome& outcome);
/// The table, then the text, success and statuses, each on a line.
std::string ToText(const ActionOutcome& outcome);

}  // namespace Norvik::Cli
