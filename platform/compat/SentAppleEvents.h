#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Norvik::Platform {

/// An Apple Event that somebody wanted to send. Codes are texts of four characters.
struct SentAppleEvent {
  std::string eventClass;
  std::string eventId;
  std::string addressType;
  std::string address;  ///< bytes of the address
};

/// For tests: the events since the last call, in order. None of them went anywhere.
std::vector<SentAppleEvent> TakeSentAppleEvents();

/// For tests: what the sender is told from now on; `procNotFound` at first.
void SetAppleEventAnswer(std::int32_t status);

}  // namespace Norvik::Platform
