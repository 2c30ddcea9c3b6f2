#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "common/Api.h"

namespace Norvik::Common {

/// A message between the service and a user's process.
struct IPCMessage {
  std::int32_t kind = 0;   ///< carried along, given no meaning here
  std::uint32_t code = 0;  ///< action to run at the receiver
  std::string key;         ///< name of its one parameter
  std::string value;
};

/// A user's process that is connected.
struct IPCSessionData {
  std::string processId;
};

/// Messages to the other processes of the agent: a second interface of the object that is an
/// `ICommunicationSystem`. Safe on any thread. The order of the operations is part of the contract.
class NORVIK_COMMON_API ICommunicationIPC {
 public:
  virtual ~ICommunicationIPC();

  /// Sends without waiting for an answer. False if the session is not connected.
  virtual bool Send(const IPCMessage& message, unsigned long long session) = 0;
  /// The connected processes by session.
  virtual std::map<unsigned long long, IPCSessionData> GetSessions() = 0;

 protected:
  ICommunicationIPC() = default;
  ICommunicationIPC(const ICommunicationIPC&) = default;
  ICommunicationIPC& operator=(const ICommunicationIPC&) = default;
};

}  // namespace Norvik::Common
