#pragma once

#include "common/action/IActionSystem.h"

namespace Norvik::Host {

/// The action system of a host, which gets the actions of schedules from the module.
class HostActions : public Common::IActionSystem {
 public:
  /// Before the module runs an action. Until it is set the actions of schedules are refused, and
  /// logged.
  virtual void SetActionFactory(Common::ActionFactory factory) = 0;
};

}  // namespace Norvik::Host
