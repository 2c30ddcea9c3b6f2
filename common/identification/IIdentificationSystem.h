#pragma once

#include <memory>
#include <string>

#include "common/Api.h"
#include "common/identification/FirstInventoryInfo.h"
#include "common/identification/SmBios.h"

namespace Norvik::Common {

/// The identity of the agent, and of the machine. Any thread may call the operations. Their order
/// is part of the contract.
class NORVIK_COMMON_API IIdentificationSystem {
 public:
  virtual ~IIdentificationSystem();

  /// The facts of the machine as they are at this call, which may take long. An inventory asks
  /// once.
  virtual FirstInventoryInfo GetFirstInventoryInfo() = 0;
  /// The machine's SMBIOS table; an invalid one (`IsValid`) on a machine that has none. The host
  /// owns it.
  virtual std::weak_ptr<SmBios> GetSmBios() = 0;
  /// The agent's identifier, the same over all restarts.
  virtual std::string GetAgentIdentifier() = 0;
  /// The token that the server knows the agent by. Empty until the agent has one: inventories wait
  /// for it.
  virtual std::string GetToken() = 0;

 protected:
  IIdentificationSystem() = default;
  IIdentificationSystem(const IIdentificationSystem&) = default;
  IIdentificationSystem& operator=(const IIdentificationSystem&) = default;
};

}  // namespace Norvik::Common
