#include "host/ipc/AllowedMessages.h"

#include <algorithm>
#include <iterator>

#include "common/action/ActionCodes.h"
#include "common/text/Text.h"
#include "host/assembly/ModuleActionCodes.h"

namespace Norvik::Host {

namespace {

using namespace Common;

struct Allowed {
  Receiver receiver;
  unsigned int code;
  /// Part of the permission: 32001 without its drive would make the service ask all users.
  const char* key;
};

constexpr Allowed ALLOWED[] = {
    {Receiver::SERVICE, ACTION_TRUNCATE_NETWORK_DRIVES, "truncateNetDrivesTable"},
    {Receiver::SERVICE, ACTION_NETWORK_DRIVES, "getNetworkDrives"},
    {Receiver::USER, ACTION_USER_NETWORK_DRIVES_LIST, "requestNetworkDrives"},
    {Receiver::USER, COMMON_ACTION_USER_MESSAGE, "message"},
    {Receiver::USER, COMMON_ACTION_SURVEY_DIALOG, "Url"},
};

constexpr std::size_t LONGEST_KEY_IN_LOGS = 64;

}  // namespace

bool IsAllowed(Receiver receiver, const IPCMessage& message) {
  return std::any_of(std::begin(ALLOWED), std::end(ALLOWED), [&](const Allowed& allowed) {
    return allowed.receiver == receiver && allowed.code == message.code &&
           message.key == allowed.key;
  });
}

ActionParameters ParametersOf(const IPCMessage& message) {
  ActionParameters parameters;
  parameters.Set(message.key, WxStringFromStdString(message.value));
  return parameters;
}

std::string Describe(const IPCMessage& message) {
  return std::to_string(message.code) + " \"" +
         OnOneLine(message.key.substr(0, LONGEST_KEY_IN_LOGS)) + "\"";
}

}  // namespace Norvik::Host
