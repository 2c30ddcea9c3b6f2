#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Norvik::Platform {

/// An Apple Event that was to be sent. Codes are texts of four characters.
struct SentAppleEvent {
  std::string eventClass;
  std::string eventId;
  std::string addressType;
  std::string address;  ///< bytes of the address
};

/// For tests: the events since the last call, in order. None of them reached a receiver.
std::vector<SentAppleEvent> TakeSentAppleEvents();

/// For tests: sets the status that senders get from now on. Initially it is `procNotFound`.
void SetAppleEventAnswer(std::int32_t status);

}  // namespace Norvik::Platform
