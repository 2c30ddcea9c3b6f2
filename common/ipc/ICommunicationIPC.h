#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "common/Api.h"

namespace Norvik::Common {

/// A message between the service and a user's process. All texts are UTF-8.
struct IPCMessage {
  std::int32_t kind = 0;   ///< passed on unchanged, without a meaning here
  std::uint32_t code = 0;  ///< code of the action that the receiver runs
  std::string key;         ///< name of the action's one parameter
  std::string value;
};

/// A connected process of a user.
struct IPCSessionData {
  std::string processId;  ///< decimal
};

/// Messages to the other processes of the agent: a second interface of the object that implements
/// `ICommunicationSystem`, got by `std::dynamic_pointer_cast`. A host without users' processes
/// leaves it out. Any thread may call the operations. Their order is part of the contract.
class NORVIK_COMMON_API ICommunicationIPC {
 public:
  virtual ~ICommunicationIPC();

  /// Sends a message and returns without waiting for its effect. In the service `session` names the
  /// receiver; in a user's process 0 is the service. False if that session is not connected.
  virtual bool Send(const IPCMessage& message, unsigned long long session) = 0;
  /// The connected processes by session identifier.
  virtual std::map<unsigned long long, IPCSessionData> GetSessions() = 0;

 protected:
  ICommunicationIPC() = default;
  ICommunicationIPC(const ICommunicationIPC&) = default;
  ICommunicationIPC& operator=(const ICommunicationIPC&) = default;
};

}  // namespace Norvik::Common
