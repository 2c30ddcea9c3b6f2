#pragma once

#include <string>
#include <vector>

#include "common/Api.h"
#include "common/action/ModuleAction.h"

namespace Norvik::Common {

/// Products of which a host can load a module. The values are those of the server.
enum ProductCodes : unsigned int { PRODUCT_KOB = 1 };

/// The operations that a loaded module offers the host. Their order is part of the contract. Any
/// thread may call them, several at once. The host owns the object and deletes it when no action
/// runs any more.
class NORVIK_COMMON_API IModule {
 public:
  virtual ~IModule();

  /// The action of a code, with a copy of the parameters; it does not run yet. A code without a
  /// handler gives the default action, which logs a warning and returns a default response. The
  /// action must not outlive the module.
  virtual ModuleAction GetAction(unsigned int code, const ActionParameters& parameters) = 0;
  /// The extensions, with their dots, of the files that this module puts into the outbox.
  virtual std::vector<std::string> GetOutputExtensionFiles() = 0;
  virtual ProductCodes GetProductCode() = 0;

 protected:
  IModule() = default;
  IModule(const IModule&) = default;
  IModule& operator=(const IModule&) = default;
};

}  // namespace Norvik::Common
