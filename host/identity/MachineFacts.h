#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "common/identification/IIdentificationSystem.h"
#include "host/identity/AgentIdentity.h"

namespace Norvik::Host {

/// The agent's identity, and the facts of the machine. The facts are gathered once in a process, at
/// the first call that needs them. Safe on any thread.
class MachineFacts : public Common::IIdentificationSystem {
 public:
  explicit MachineFacts(std::shared_ptr<const AgentIdentity> identity);
  ~MachineFacts() override;

  Common::FirstInventoryInfo GetFirstInventoryInfo() override;
  std::weak_ptr<Common::SmBios> GetSmBios() override;
  std::string GetAgentIdentifier() override { return identity_->Get().identifier; }
  std::string GetToken() override { return identity_->Get().token; }

 private:
  void Gather();

  const std::shared_ptr<const AgentIdentity> identity_;
  std::once_flag gathered_;
  std::shared_ptr<Common::SmBios> smBios_;
  std::unique_ptr<const Common::FirstInventoryInfo> firstInventory_;
};

}  // namespace Norvik::Host
