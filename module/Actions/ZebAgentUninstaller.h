#pragma once

namespace Norvik::KOB {

/// Removal of the sibling product's agent.
class ZebAgentUninstaller {
 public:
  /// Starts the script that removes the agent, if it is installed. What goes wrong is logged only.
  void UninstallZebAgent();
};

}  // namespace Norvik::KOB
