#pragma once

#include <memory>
#include <string>

#include "common/Api.h"
#include "common/identification/FirstInventoryInfo.h"
#include "common/identification/SmBios.h"

namespace Norvik::Common {

/// Identity of the agent and the machine. Safe on any thread. The order of the operations is part
/// of the contract.
class NORVIK_COMMON_API IIdentificationSystem {
 public:
  virtual ~IIdentificationSystem();

  virtual FirstInventoryInfo GetFirstInventoryInfo() = 0;
  virtual std::weak_ptr<SmBios> GetSmBios() = 0;
  virtual std::string GetAgentIdentifier() = 0;
  /// Empty until the agent has one; inventories wait for it.
  virtual std::string GetToken() = 0;

 protected:
  IIdentificationSystem() = default;
  IIdentificationSystem(const IIdentificationSystem&) = default;
  IIdentificationSystem& operator=(const IIdentificationSystem&) = default;
};

}  // namespace Norvik::Common
