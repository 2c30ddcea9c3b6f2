#include "host/ipc/MessageAction.h"

#include "common/text/Text.h"

namespace Norvik::Host {

using namespace Common;

ActionParameters ParametersOf(const IPCMessage& message) {
  ActionParameters parameters;
  parameters.Set(message.key, WxStringFromStdString(message.value));
  return parameters;
}

}  // namespace Norvik::Host
