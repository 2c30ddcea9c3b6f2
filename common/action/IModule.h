#pragma once

#include <string>
#include <vector>

#include "common/Api.h"
#include "common/action/ModuleAction.h"

namespace Norvik::Common {

/// Products of which a host can load a module. The values are those of the server.
enum ProductCodes : unsigned int { PRODUCT_KOB = 1 };

/// What a loaded module offers the host. The order of the operations is part of the contract.
/// `GetAction` may be called from any thread.
class NORVIK_COMMON_API IModule {
 public:
  virtual ~IModule();

  /// The action of a code, with a copy of the parameters. Never fails: a code without a handler
  /// gives the default action.
  virtual ModuleAction GetAction(unsigned int code, const ActionParameters& parameters) = 0;
  /// Extensions (with their dot) of the files that this module leaves in the outbox.
  virtual std::vector<std::string> GetOutputExtensionFiles() = 0;
  virtual ProductCodes GetProductCode() = 0;

 protected:
  IModule() = default;
  IModule(const IModule&) = default;
  IModule& operator=(const IModule&) = default;
};

}  // namespace Norvik::Common
