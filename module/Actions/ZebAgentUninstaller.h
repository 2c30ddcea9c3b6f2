#pragma once

namespace Norvik::KOB {

/// Removal of the sibling product's agent.
class ZebAgentUninstaller {
 public:
  /// Starts the script that removes the agent, if that is installed, and does not wait for its end.
  /// Never throws: failures are logged.
  void UninstallZebAgent();
};

}  // namespace Norvik::KOB
