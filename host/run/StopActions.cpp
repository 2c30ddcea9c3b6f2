#include "host/run/StopActions.h"

#include <boost/format.hpp>

#include "common/log/Logger.h"
#include "host/OutputText.h"

namespace Norvik::Host {

bool StopActions(ActionSystem& actions, std::chrono::milliseconds limit) {
  if (actions.StopWithin(limit)) return true;
  for (const auto& action : actions.Running()) {
    NORVIK_WARNING(boost::format("Action %1%, which runs since %2%, did not end in time; the "
                                 "process ends without it") %
                   action.label % TimeText(action.since));
  }
  return false;
}

}  // namespace Norvik::Host
