#pragma once

#include <string>

#include "common/action/ActionResponse.h"

namespace Norvik::Host {

/// How an action ended.
struct ActionResult {
  Common::ActionResponse response;
  std::string failure;  ///< text of what the handler threw; empty if it returned
};

}  // namespace Norvik::Host
