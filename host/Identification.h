#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "common/identification/IIdentificationSystem.h"
#include "host/AgentIdentity.h"

namespace Norvik::Host {

/// The agent's identity, and the facts of the machine, which are gathered once in a process, when
/// they are first asked for.
class Identification : public Common::IIdentificationSystem {
 public:
  explicit Identification(AgentIdentity identity);
  ~Identification() override;

  Common::FirstInventoryInfo GetFirstInventoryInfo() override;
  std::weak_ptr<Common::SmBios> GetSmBios() override;
  std::string GetAgentIdentifier() override { return identity_.identifier; }
  std::string GetToken() override { return identity_.token; }

 private:
  void Gather();

  const AgentIdentity identity_;
  std::once_flag gathered_;
  std::shared_ptr<Common::SmBios> smBios_;
  std::unique_ptr<const Common::FirstInventoryInfo> firstInventory_;
};

}  // namespace Norvik::Host
