#pragma once

#include "common/action/IActionSystem.h"

namespace Norvik::Host {

/// The action system of a host. The module makes the actions of its schedules.
class HostActions : public Common::IActionSystem {
 public:
  /// To be called before the module runs an action. Until then schedules are refused, with a line
  /// in the log.
  virtual void SetActionFactory(Common::ActionFactory factory) = 0;
};

}  // namespace Norvik::Host
